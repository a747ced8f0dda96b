#pragma once

#include <numbers>

namespace tavora::studio {

/// Angles are radians internally, and degrees where people write and read them.
inline constexpr double kRadiansPerDegree = std::numbers::pi / 180;
inline constexpr double kDegreesPerRadian = 180 / std::numbers::pi;

/// The largest angle of a directional light, in degrees from edge to edge: it must be less than
/// half of the sky.
inline constexpr double kMaxLightDegrees = 179;

}  // namespace tavora::studio
