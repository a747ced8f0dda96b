#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <embree3/rtcore.h>
#include <vector>

#include "studio/render/ray_context.h"

namespace tavora::studio {

/// Rays that Embree takes in one call, each of their values in a row of its own:
/// so it need not gather them. One thread at a time.
class RayRows {
  public:
    explicit RayRows(std::size_t room);
    RayRows(const RayRows&) = delete;
    RayRows& operator=(const RayRows&) = delete;

    void set(std::size_t at, const Ray& ray) {
        setStart(at, Imath::V3f(ray.origin));
        setDirection(at, embreeDirection(ray.direction));
        rows_.tnear[at] = embreeNearest(ray);
        rows_.tfar[at] = embreeFarthest(ray);
    }
    void setStart(std::size_t at, const Imath::V3f& origin) {
        rows_.org_x[at] = origin.x;
        rows_.org_y[at] = origin.y;
        rows_.org_z[at] = origin.z;
    }
    /// Turns the first `count` rays, whose starts are set, to one direction, without
    /// end; `direction` as embreeDirection() gives it.
    void turnToSky(std::size_t count, const Imath::V3f& direction);

    /// Where the ray ends: what was set, or what tracing made of it.
    float farthest(std::size_t at) const { return rows_.tfar[at]; }

    /// The ray as Embree takes one alone.
    RTCRay alone(std::size_t at) const;

    /// For Embree, with the place of each ray as its `id`; valid while this lives.
    const RTCRayNp& embree() const { return rows_; }

  private:
    void setDirection(std::size_t at, const Imath::V3f& direction) {
        rows_.dir_x[at] = direction.x;
        rows_.dir_y[at] = direction.y;
        rows_.dir_z[at] = direction.z;
    }

    std::vector<float> values_;    ///< row after row
    std::vector<unsigned> words_;  ///< likewise
    RTCRayNp rows_;                ///< into both
};

}  // namespace tavora::studio
