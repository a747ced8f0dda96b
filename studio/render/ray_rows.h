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

    std::size_t room() const { return ids_.size(); }

    void set(std::size_t at, const Ray& ray) {
        setStart(at, Imath::V3f(ray.origin), static_cast<float>(ray.nearest),
                 static_cast<float>(ray.farthest));
        setDirection(at, embreeDirection(ray.direction));
    }
    void setStart(std::size_t at, const Imath::V3f& origin, float nearest, float farthest) {
        float* const value = values_.data() + at;
        value[kOriginX * room()] = origin.x;
        value[kOriginY * room()] = origin.y;
        value[kOriginZ * room()] = origin.z;
        value[kNearest * room()] = nearest;
        value[kFarthest * room()] = farthest;
    }
    /// `direction` as embreeDirection() gives it.
    void setDirection(std::size_t at, const Imath::V3f& direction) {
        float* const value = values_.data() + at;
        value[kDirectionX * room()] = direction.x;
        value[kDirectionY * room()] = direction.y;
        value[kDirectionZ * room()] = direction.z;
    }
    /// setDirection() of the first `count` rays.
    void setDirections(std::size_t count, const Imath::V3f& direction);

    /// Where the ray ends: where it starts out to, or what tracing made of it.
    float farthest(std::size_t at) const { return values_[kFarthest * room() + at]; }

    /// The ray as Embree takes one alone.
    RTCRay alone(std::size_t at) const;

    /// For Embree, with the place of each ray as its `id`; valid while this lives.
    RTCRayNp embree();

  private:
    enum Value : std::size_t {
        kOriginX,
        kOriginY,
        kOriginZ,
        kNearest,
        kDirectionX,
        kDirectionY,
        kDirectionZ,
        kFarthest,
        kValues
    };
    float* row(Value value) { return values_.data() + value * room(); }

    std::vector<unsigned> ids_;
    std::vector<unsigned> masks_;
    std::vector<unsigned> flags_;
    std::vector<float> times_;
    std::vector<float> values_;  ///< row after row
};

}  // namespace tavora::studio
