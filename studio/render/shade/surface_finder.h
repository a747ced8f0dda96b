#pragma once

#include <cstdint>

#include "studio/render/cache/cached_path.h"
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

    /// The hit of `ray` after `after` (none: the first), or none. `cached` is `after`'s, and the
    /// result's afterwards.
    Hit nextHit(const Ray& ray, const Hit& after, CachedHit& cached);

    /// `hit` or the next one along `ray` whose surface is not wholly transparent there; or
    /// none. `cached` is `hit`'s, and the result's afterwards.
    Hit visibleHit(const Ray& ray, Hit hit, CachedHit& cached);

    /// Rays that were traced.
    std::uint64_t rays() const { return rays_; }

  private:
    double alphaOf(const Ray& ray, const Hit& hit) const;

    const RayScene* scene_;
    std::uint64_t rays_ = 0;
};

/// The base colour at `point`, whose hit is `cached`. Also turns the point's shading normal as
/// the surface's normal map says.
BaseColor lookUpSurface(const RayScene& scene, SurfacePoint& point, const CachedHit& cached);

}  // namespace tavora::studio
