#pragma once

#include <ImathVec.h>
#include <cmath>
#include <limits>

namespace tavora::studio {

/// `v` as a unit vector, or `fallback` when it has no direction.
inline Imath::V3d unitOr(const Imath::V3d& v, const Imath::V3d& fallback) {
    const double length = std::sqrt(v.length2());
    return length > 0 && length < std::numeric_limits<double>::infinity() ? v / length : fallback;
}

}  // namespace tavora::studio
