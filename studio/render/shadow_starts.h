#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <vector>

#include "studio/render/ray_rows.h"
#include "studio/render/shadow_rays.h"

namespace tavora::studio {

/// Where shadow rays start that go to one light after the other: worked out, and
/// laid out for Embree, once for all of them. One thread at a time.
class ShadowStarts {
  public:
    /// At most `room` at once.
    explicit ShadowStarts(std::size_t room) : rows_(room) { origins_.reserve(room); }

    void clear() { origins_.clear(); }
    void add(const ShadowOrigin& origin) {
        rows_.setStart(origins_.size(), Imath::V3f(origin.position));
        origins_.push_back(origin);
    }

    std::size_t size() const { return origins_.size(); }
    const ShadowOrigin& operator[](std::size_t at) const { return origins_[at]; }

    /// Of the rays only the origins are set.
    const RTCRayNp& embree() const { return rows_.embree(); }

  private:
    RayRows rows_;
    std::vector<ShadowOrigin> origins_;
};

}  // namespace tavora::studio
