#pragma once

#include <numbers>

namespace tavora::studio {

/// Angles are radians within, degrees where people write and read them.
inline constexpr double kRadiansPerDegree = std::numbers::pi / 180;
inline constexpr double kDegreesPerRadian = 180 / std::numbers::pi;

/// Directional lights are less than half of the sky: degrees from edge to edge.
inline constexpr double kWidestSunDegrees = 179;

}  // namespace tavora::studio
