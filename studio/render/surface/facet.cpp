#include "studio/render/surface/facet.h"

#include <algorithm>
#include <bit>

#include "studio/render/surface/unit_vector.h"
#include "studio/render/trace/rounding_margin.h"

namespace tavora::studio {
namespace {

void setCorners(Facet& facet) {
    const MeshGeometry& geometry = *facet.key.geometry;
    facet.vertices = geometry.source->mesh->triangles[facet.key.triangle];
    for (std::size_t i = 0; i < 3; ++i) {
        facet.corners[i] = Imath::V3d(vertexOf(geometry, facet.vertices[i]));
        facet.magnitude = std::max(facet.magnitude, magnitudeOf(facet.corners[i]));
    }
}

void setCornerNormals(Facet& facet) {
    const Mesh& mesh = *facet.source().mesh;
    facet.cornerNormals.fill(facet.normal);
    if (!facet.isSmooth) return;
    for (std::size_t i = 0; i < 3; ++i) {
        const Imath::V3d front =
            Imath::V3d(mesh.normals[facet.vertices[i]]) * facet.key.geometry->normalToWorld;
        facet.cornerNormals[i] = unitOr(facet.key.isBack ? -front : front, facet.normal);
    }
}

void setSide(const Ray& ray, Facet& facet) {
    const Imath::V3d cross =
        (facet.corners[1] - facet.corners[0]).cross(facet.corners[2] - facet.corners[0]);
    facet.area = 0.5 * cross.length();
    facet.toScale = -cross;
    const Imath::V3d front = unitOr(cross * facet.key.geometry->facing, -ray.direction);
    facet.key.isBack = facet.isDoubleSided && front.dot(ray.direction) > 0;
    facet.normal = facet.key.isBack ? -front : front;
    setCornerNormals(facet);
}

void setSurface(const RayScene& scene, Facet& facet) {
    const SceneMesh& source = facet.source();
    const Material& material = scene.material(source.surfaceIndex);
    facet.surface = source.surfaceIndex;
    facet.isSmooth = source.mesh->smooth;
    facet.isMapped = source.surface->normalTexture && source.surface->normalMap &&
                     !source.mesh->tangents.empty();
    facet.isDoubleSided = source.surface->doubleSided;
    facet.uniformColor =
        material.isUniform && source.mesh->colors.empty() ? &material.uniformColor : nullptr;
}

}  // namespace

Facet facetAt(const RayScene& scene, const Ray& ray, const Hit& hit) {
    Facet facet;
    facet.key.geometry = &scene.geometry(hit.mesh);
    facet.key.triangle = hit.triangle;
    facet.mesh = hit.mesh;
    setSurface(scene, facet);
    setCorners(facet);
    setSide(ray, facet);
    facet.eye = eyeOf(facet, ray.origin);
    return facet;
}

FacetEye eyeOf(const Facet& facet, const Imath::V3d& position) {
    const Imath::V3d toEye = position - facet.corners[0];
    return {position, (facet.corners[2] - facet.corners[0]).cross(toEye),
            toEye.cross(facet.corners[1] - facet.corners[0])};
}

namespace {

constexpr std::uint32_t kEmpty = 0xffffffff;

/// Whether facetAt() would give `facet` once more, the eye aside. A triangle without area
/// turns to each ray.
bool isSameFacet(const Facet& facet, const Ray& ray, const Hit& hit) {
    if (facet.key.triangle != hit.triangle || facet.mesh != hit.mesh || !(facet.area > 0))
        return false;
    if (!facet.isDoubleSided) return true;
    const Imath::V3d front = facet.key.isBack ? -facet.normal : facet.normal;
    return facet.key.isBack == (front.dot(ray.direction) > 0);
}

}  // namespace

FacetCache::FacetCache(const RayScene& scene, std::size_t capacity)
    : scene_(&scene), slots_(std::bit_ceil(2 * capacity), kEmpty) {
    facets_.reserve(capacity);
}

void FacetCache::reserve(std::size_t count) {
    if (facets_.size() + count <= facets_.capacity()) return;
    facets_.clear();
    std::fill(slots_.begin(), slots_.end(), kEmpty);
}

std::uint32_t& FacetCache::slotOf(const Hit& hit) {
    // Fibonacci hashing: neighbouring triangles go far apart.
    const std::uint32_t hash = (hit.triangle + hit.mesh * 0x85ebca6bU) * 0x9e3779b1U;
    return slots_[hash >> 7 & (slots_.size() - 1)];
}

std::uint32_t FacetCache::numberAt(const Ray& ray, const Hit& hit) {
    std::uint32_t& slot = slotOf(hit);
    if (slot != kEmpty && isSameFacet(facets_[slot], ray, hit)) {
        Facet& facet = facets_[slot];
        if (facet.eye.position != ray.origin) facet.eye = eyeOf(facet, ray.origin);
        return slot;
    }
    slot = static_cast<std::uint32_t>(facets_.size());
    facets_.push_back(facetAt(*scene_, ray, hit));
    return slot;
}

}  // namespace tavora::studio
