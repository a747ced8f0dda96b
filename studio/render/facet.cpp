#include "studio/render/facet.h"

#include <algorithm>

#include "studio/render/rounding_margin.h"
#include "studio/render/unit_vector.h"

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
    facet.key.isBack = facet.showsBack && front.dot(ray.direction) > 0;
    facet.normal = facet.key.isBack ? -front : front;
    setCornerNormals(facet);
}

void setSurface(const RayScene& scene, Facet& facet) {
    const SceneMesh& source = facet.source();
    const SurfaceTraits& traits = scene.traits(source.surfaceIndex);
    facet.surface = source.surfaceIndex;
    facet.isSmooth = source.mesh->smooth;
    facet.isMapped = source.surface->normalTexture && source.surface->normalMap &&
                     !source.mesh->tangents.empty();
    facet.showsBack = source.surface->doubleSided;
    facet.even = traits.isEven && source.mesh->colors.empty() ? &traits.even : nullptr;
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
    setEye(ray.origin, facet);
    return facet;
}

void setFacet(const RayScene& scene, const Ray& ray, const Hit& hit, Facet& facet) {
    if (!isSameFacet(facet, ray, hit)) {
        facet = facetAt(scene, ray, hit);
    } else if (facet.eye != ray.origin) {
        setEye(ray.origin, facet);
    }
}

/// Moller and Trumbore, "Fast, Minimum Storage Ray/Triangle Intersection" (1997),
/// with the direction taken out of the products.
void setEye(const Imath::V3d& eye, Facet& facet) {
    const Imath::V3d toEye = eye - facet.corners[0];
    facet.eye = eye;
    facet.toWeight1 = (facet.corners[2] - facet.corners[0]).cross(toEye);
    facet.toWeight2 = toEye.cross(facet.corners[1] - facet.corners[0]);
}

}  // namespace tavora::studio
