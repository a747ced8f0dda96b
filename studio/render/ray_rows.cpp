#include "studio/render/ray_rows.h"

#include <algorithm>
#include <numeric>

namespace tavora::studio {

RayRows::RayRows(std::size_t room)
    : ids_(room), masks_(room, ~0U), flags_(room), times_(room), values_(kValues * room) {
    std::iota(ids_.begin(), ids_.end(), 0U);
}

void RayRows::setDirections(std::size_t count, const Imath::V3f& direction) {
    std::fill_n(row(kDirectionX), count, direction.x);
    std::fill_n(row(kDirectionY), count, direction.y);
    std::fill_n(row(kDirectionZ), count, direction.z);
}

RTCRay RayRows::alone(std::size_t at) const {
    const auto value = [&](Value which) { return values_[which * room() + at]; };
    return {value(kOriginX),
            value(kOriginY),
            value(kOriginZ),
            value(kNearest),
            value(kDirectionX),
            value(kDirectionY),
            value(kDirectionZ),
            0,
            value(kFarthest),
            ~0U,
            0,
            0};
}

RTCRayNp RayRows::embree() {
    return {row(kOriginX),    row(kOriginY),    row(kOriginZ),    row(kNearest),
            row(kDirectionX), row(kDirectionY), row(kDirectionZ), times_.data(),
            row(kFarthest),   masks_.data(),    ids_.data(),      flags_.data()};
}

}  // namespace tavora::studio
