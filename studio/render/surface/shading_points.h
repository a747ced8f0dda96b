#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "studio/render/surface/surface_point.h"
#include "studio/render/trace/ray_batch.h"
#include "studio/render/trace/vector_array.h"

namespace tavora::studio {

/// Points next to each other in ShadingPoints that lie on one mesh: `first` to before `last`.
struct PointRange {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    const SceneMesh* mesh = nullptr;
};

/// Points on surfaces that are lit and shaded together. What loops over many points read is
/// there as structure of arrays. One thread at a time.
class ShadingPoints {
  public:
    explicit ShadingPoints(std::size_t capacity);

    void clear();
    /// Adds the point where `ray` hits `facet`, as setSurfacePoint() gives it. Points of one
    /// mesh, and of one facet, should come one after the other.
    SurfacePoint& add(const Facet& facet, const Ray& ray);
    /// Fills the arrays below from the points; until clear(), only once.
    void fillArrays();

    std::size_t size() const { return points_.size(); }
    const SurfacePoint& operator[](std::size_t i) const { return points_[i]; }
    std::span<const PointRange> meshes() const { return meshes_; }

    // By point, as in SurfacePoint, in the world, once fillArrays() was called:
    const VectorArray& positions() const { return positions_; }
    const VectorArray& normals() const { return normals_; }
    const VectorArray& smoothNormals() const { return smoothNormals_; }
    const VectorArray& polygonNormals() const { return polygonNormals_; }
    /// shadowRayOrigin() of each.
    const VectorArray& shadowOrigins() const { return shadowOrigins_; }
    /// The same for Embree; nothing but the origins is set.
    const RTCRayNp& shadowRays() const { return shadowRays_.embree(); }

  private:
    std::vector<SurfacePoint> points_;
    std::vector<PointRange> meshes_;
    bool areFilled_ = false;
    VectorArray positions_;
    VectorArray normals_;
    VectorArray smoothNormals_;
    VectorArray polygonNormals_;
    VectorArray shadowOrigins_;
    RayBatch shadowRays_;
};

}  // namespace tavora::studio
