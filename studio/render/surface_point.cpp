#include "studio/render/surface_point.h"

#include <algorithm>
#include <cmath>

namespace tavora::studio {
namespace {

/// Rays are traced in single precision: a distance to a plane is off by some
/// units in the last of 24 places of the coordinates that span it.
constexpr double kRounding = 1.0 / (1 << 19);

/// `v` as a unit vector, or `fallback` when it has no direction.
Imath::V3d unitOr(const Imath::V3d& v, const Imath::V3d& fallback) {
    const double length = v.length();
    return length > 0 && length < std::numeric_limits<double>::infinity() ? v / length : fallback;
}

/// Where the ray meets the triangle, in double precision: single is too coarse
/// for what is shaded. Solved by the products of Moller and Trumbore, "Fast,
/// Minimum Storage Ray/Triangle Intersection" (1997). The ray is known to hit:
/// weights that rounding puts outside go to the edge.
void setWeights(const Ray& ray, SurfacePoint& point) {
    const Imath::V3d edge1 = point.corners[1] - point.corners[0];
    const Imath::V3d edge2 = point.corners[2] - point.corners[0];
    const Imath::V3d toOrigin = ray.origin - point.corners[0];
    const Imath::V3d p = ray.direction.cross(edge2);
    const Imath::V3d q = toOrigin.cross(edge1);
    const double scale = edge1.dot(p);
    if (scale == 0) return;
    const double u = std::clamp(toOrigin.dot(p) / scale, 0.0, 1.0);
    const double v = std::clamp(ray.direction.dot(q) / scale, 0.0, 1.0 - u);
    point.weights[0] = 1 - u - v;
    point.weights[1] = u;
    point.weights[2] = v;
}

Imath::V3d blend(const std::array<Imath::V3d, 3>& corners, const double weights[3]) {
    return corners[0] * weights[0] + corners[1] * weights[1] + corners[2] * weights[2];
}

void setCorners(SurfacePoint& point) {
    const Mesh& mesh = *point.geometry->source->mesh;
    point.vertices = mesh.triangles[point.triangle];
    for (std::size_t i = 0; i < 3; ++i)
        point.corners[i] = Imath::V3d(point.geometry->vertices[point.vertices[i]]);
}

void blendNormals(SurfacePoint& point) {
    point.normal = point.geometricNormal;
    if (!point.geometry->source->mesh->smooth) return;
    point.normal = unitOr(blend(point.cornerNormals, point.weights), point.geometricNormal);
}

/// `side` is -1 where the back is seen, else 1.
void setCornerNormals(SurfacePoint& point, double side) {
    const Mesh& mesh = *point.geometry->source->mesh;
    point.cornerNormals.fill(point.geometricNormal);
    if (!mesh.smooth) return;
    for (std::size_t i = 0; i < 3; ++i) {
        const Imath::V3d normal(mesh.normals[point.vertices[i]]);
        point.cornerNormals[i] =
            unitOr(normal * point.geometry->normalToWorld * side, point.geometricNormal);
    }
}

/// Sets what the triangle has on the side that is seen.
void setSide(const Ray& ray, SurfacePoint& point) {
    const Imath::V3d cross =
        (point.corners[1] - point.corners[0]).cross(point.corners[2] - point.corners[0]);
    point.area = 0.5 * cross.length();
    const Imath::V3d front = unitOr(cross * point.geometry->facing, -ray.direction);
    const bool fromBack =
        point.geometry->source->surface->doubleSided && front.dot(ray.direction) > 0;
    const double side = fromBack ? -1 : 1;
    point.geometricNormal = front * side;
    setCornerNormals(point, side);
}

/// Sets all that differs between the hits of a triangle on one side.
void setHit(const Ray& ray, SurfacePoint& point) {
    setWeights(ray, point);
    point.position = blend(point.corners, point.weights);
    blendNormals(point);
    point.distance = (point.position - ray.origin).length();
    point.spotSize = ray.spotAt(point.distance);
}

/// Whether the side of the triangle that is seen depends on no ray.
bool hasOneSide(const SurfacePoint& point) {
    return point.area > 0 && !point.geometry->source->surface->doubleSided;
}

}  // namespace

TexturePlace SurfacePoint::texturePlace() const {
    TexturePlace place;
    place.mesh = geometry->source->mesh;
    place.triangle = triangle;
    std::copy_n(weights, 3, place.weights);
    place.spotSize = spotSize;
    place.worldArea = area;
    return place;
}

SurfacePoint surfacePoint(const RayScene& scene, const Ray& ray, const HitKey& hit) {
    SurfacePoint point;
    point.geometry = &scene.geometry(hit.mesh);
    point.triangle = hit.triangle;
    setCorners(point);
    setSide(ray, point);
    setHit(ray, point);
    return point;
}

void surfacePointLike(const SurfacePoint& before, const RayScene& scene, const Ray& ray,
                      const HitKey& hit, SurfacePoint& point) {
    const bool same = before.geometry == &scene.geometry(hit.mesh) &&
                      before.triangle == hit.triangle && hasOneSide(before);
    if (!same) {
        point = surfacePoint(scene, ray, hit);
        return;
    }
    point = before;
    setHit(ray, point);
}

Imath::V3d shadowStart(const SurfacePoint& point) {
    Imath::V3d lift(0);
    double magnitude = magnitudeOf(point.position);
    for (std::size_t i = 0; i < 3; ++i) {
        const Imath::V3d& normal = point.cornerNormals[i];
        const double above = (point.position - point.corners[i]).dot(normal);
        lift -= normal * (std::min(above, 0.0) * point.weights[i]);
        magnitude = std::max(magnitude, magnitudeOf(point.corners[i]));
    }
    if (!point.geometry->source->mesh->smooth) lift = Imath::V3d(0);
    return point.position + lift + point.geometricNormal * roundingMargin(magnitude);
}

double roundingMargin(double magnitude) {
    return magnitude * kRounding;
}

double magnitudeOf(const Imath::V3d& v) {
    return std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)});
}

}  // namespace tavora::studio
