#pragma once

#include <ImathVec.h>
#include <algorithm>
#include <cmath>

namespace tavora::studio {

/// Largest coordinate, without sign.
inline double magnitudeOf(const Imath::V3d& v) {
    return std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)});
}

/// Distance that rounding may put between a surface and a ray that starts on
/// it, for coordinates of that magnitude. Rays are traced in single precision:
/// a distance to a plane is off by some units in the last of 24 places of the
/// coordinates that span it.
inline double roundingMargin(double magnitude) {
    constexpr double kRounding = 1.0 / (1 << 19);
    return magnitude * kRounding;
}

}  // namespace tavora::studio
