#include "studio/render/surface/shading_points.h"

namespace tavora::studio {

ShadingPoints::ShadingPoints(std::size_t capacity)
    : positions_(capacity),
      normals_(capacity),
      smoothNormals_(capacity),
      polygonNormals_(capacity),
      shadowOrigins_(capacity),
      shadowRays_(capacity) {
    points_.reserve(capacity);
}

void ShadingPoints::clear() {
    points_.clear();
    meshes_.clear();
    areFilled_ = false;
}

SurfacePoint& ShadingPoints::add(const Facet& facet, const Ray& ray) {
    const auto number = static_cast<std::uint32_t>(points_.size());
    const SceneMesh& mesh = facet.source();
    if (meshes_.empty() || meshes_.back().mesh != &mesh) meshes_.push_back({number, number, &mesh});
    meshes_.back().last = number + 1;
    SurfacePoint& point = points_.emplace_back();
    setSurfacePoint(facet, ray, point);
    return point;
}

void ShadingPoints::fillArrays() {
    if (areFilled_) return;
    areFilled_ = true;
    for (std::size_t i = 0; i < points_.size(); ++i) {
        const SurfacePoint& point = points_[i];
        positions_.set(i, point.position);
        normals_.set(i, point.normal);
        smoothNormals_.set(i, point.smoothNormal);
        polygonNormals_.set(i, point.facet->normal);
        const Imath::V3d origin = shadowRayOrigin(point);
        shadowOrigins_.set(i, origin);
        shadowRays_.setOrigin(i, Imath::V3f(origin));
    }
}

}  // namespace tavora::studio
