#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <embree3/rtcore.h>
#include <vector>

namespace tavora::studio {

/// Rays as structure of arrays, in the layout that Embree takes: whoever makes rays writes
/// them here and nothing is gathered afterwards. One thread at a time.
class RayBatch {
  public:
    /// Room for that many rays. All masks are full, and ids are the rays' numbers.
    explicit RayBatch(std::size_t capacity);
    RayBatch(const RayBatch&) = delete;
    RayBatch& operator=(const RayBatch&) = delete;

    void setOrigin(std::size_t ray, const Imath::V3f& origin) {
        arrays_.org_x[ray] = origin.x;
        arrays_.org_y[ray] = origin.y;
        arrays_.org_z[ray] = origin.z;
    }
    /// `direction` as embreeDirection() gives it; `tMin`, `tMax` as embreeTMin() and
    /// embreeTMax() do.
    void setDirection(std::size_t ray, const Imath::V3f& direction, float tMin, float tMax) {
        arrays_.dir_x[ray] = direction.x;
        arrays_.dir_y[ray] = direction.y;
        arrays_.dir_z[ray] = direction.z;
        arrays_.tnear[ray] = tMin;
        arrays_.tfar[ray] = tMax;
    }
    /// Gives the first `count` rays one direction and no end.
    void setAllDirections(std::size_t count, const Imath::V3f& direction);

    /// The ray as Embree takes one alone.
    RTCRay ray(std::size_t ray) const;

    /// The arrays; valid while this lives. Tracing writes `tfar`.
    const RTCRayNp& embree() const { return arrays_; }

  private:
    std::vector<float> floats_;
    std::vector<unsigned> words_;
    RTCRayNp arrays_;  ///< into both
};

}  // namespace tavora::studio
