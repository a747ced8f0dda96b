#pragma once

#include <ImathVec.h>
#include <vector>

#include "studio/scene/scene.h"

/// A light with a size as the same points for every place that it lights: what
/// it brings somewhere is the mean of what comes from them. That they stay where
/// they are leaves no grain in the shadows' borders, nor flicker in films.
///
/// Points lie in the order in which they count: the first kAreaProbes spread
/// over the whole light.
namespace tavora::studio {

inline constexpr std::size_t kAreaProbes = 16;
inline constexpr std::size_t kAreaPoints = 64;

/// Places in the world, spread evenly in the ball of that radius around a point
/// or spot light; none for a radius that is not above 0.
std::vector<Imath::V3d> punctualLightPoints(const Light& light, double radius);

/// Unit ways to a directional light, spread evenly over a disc in the sky of
/// that diameter, in radians below pi; none for one that is not above 0.
std::vector<Imath::V3d> directionalLightPoints(const Light& light, double angle);

}  // namespace tavora::studio
