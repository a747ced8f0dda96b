#pragma once

#include <cstdint>

#include "studio/render/light/light_batch.h"
#include "studio/render/material/material.h"
#include "studio/render/surface/facet.h"
#include "studio/render/surface/surface_point.h"
#include "studio/render/trace/ray_scene.h"

namespace tavora::studio {

/// Follows rays from hit to hit, by what is cached of them where that is known, and finds the
/// surfaces that show. One thread at a time.
class SurfaceFinder {
  public:
    /// `scene` must outlive it.
    explicit SurfaceFinder(const RayScene& scene) : scene_(&scene) {}

    /// The hit of `ray` after `after` (none: the first), or none. `prior` stands for `after`,
    /// and for the result afterwards.
    Hit nextHit(const Ray& ray, const Hit& after, PriorVisibility& prior);

    /// `hit`, for which `prior` stands, or the next one along `ray` whose surface is not
    /// wholly transparent there; or none.
    Hit visibleHit(const Ray& ray, Hit hit, PriorVisibility& prior);

    /// Rays that were traced.
    std::uint64_t rays() const { return rays_; }

  private:
    double alphaOf(const Ray& ray, const Hit& hit) const;

    const RayScene* scene_;
    std::uint64_t rays_ = 0;
};

/// The base colour at `point`, for which `prior` stands. Also turns the point's shading normal
/// as the surface's normal map says.
BaseColor lookUpSurface(const RayScene& scene, SurfacePoint& point, const PriorVisibility& prior);

}  // namespace tavora::studio
