#include "studio/render/surface/surface_point.h"

#include <algorithm>
#include <cmath>

#include "studio/render/surface/unit_vector.h"
#include "studio/render/trace/rounding_margin.h"

namespace tavora::studio {
namespace {

/// Where the ray hits the triangle, in double precision: single is too coarse for what is
/// shaded. The ray is known to hit: weights that rounding puts outside go to the edge.
void setWeights(const Facet& facet, const FacetEye& eye, const Imath::V3d& direction,
                double weights[3]) {
    const double scale = direction.dot(facet.toScale);
    const bool isAlong = scale == 0;
    const double u = isAlong ? 0 : std::clamp(direction.dot(eye.toWeight1) / scale, 0.0, 1.0);
    const double v = isAlong ? 0 : std::clamp(direction.dot(eye.toWeight2) / scale, 0.0, 1.0 - u);
    weights[0] = 1 - u - v;
    weights[1] = u;
    weights[2] = v;
}

Imath::V3d blend(const std::array<Imath::V3d, 3>& corners, const double weights[3]) {
    return corners[0] * weights[0] + corners[1] * weights[1] + corners[2] * weights[2];
}

}  // namespace

MeshPoint SurfacePoint::meshPoint() const {
    MeshPoint point;
    point.mesh = source().mesh;
    point.triangle = facet->key.triangle;
    std::copy_n(weights, 3, point.weights);
    point.footprint = footprint;
    point.worldArea = facet->area;
    return point;
}

void setSurfacePoint(const Facet& facet, const Ray& ray, SurfacePoint& point) {
    point.facet = &facet;
    if (facet.eye.position == ray.origin) {
        setWeights(facet, facet.eye, ray.direction, point.weights);
    } else {
        setWeights(facet, eyeOf(facet, ray.origin), ray.direction, point.weights);
    }
    point.position = blend(facet.corners, point.weights);
    point.smoothNormal = facet.isSmooth
                             ? unitOr(blend(facet.cornerNormals, point.weights), facet.normal)
                             : facet.normal;
    point.normal = point.smoothNormal;
    point.distance = std::sqrt((point.position - ray.origin).length2());
    point.footprint = ray.footprintAt(point.distance);
}

Imath::V3d shadowRayOrigin(const SurfacePoint& point) {
    const Facet& facet = *point.facet;
    const double magnitude = std::max(magnitudeOf(point.position), facet.magnitude);
    const Imath::V3d start = point.position + facet.normal * roundingMargin(magnitude);
    if (!facet.isSmooth) return start;
    Imath::V3d lift(0);
    for (std::size_t i = 0; i < 3; ++i) {
        const Imath::V3d& normal = facet.cornerNormals[i];
        const double above = (point.position - facet.corners[i]).dot(normal);
        lift -= normal * (std::min(above, 0.0) * point.weights[i]);
    }
    return start + lift;
}

Ray shadowRayStart(const SurfacePoint& point) {
    Ray ray;
    ray.origin = shadowRayOrigin(point);
    ray.footprint = point.footprint;
    ray.excludedSelf = point.source().surface->selfShadow ? nullptr : &point.source();
    return ray;
}

}  // namespace tavora::studio
