#pragma once

#include <ImathVec.h>
#include <vector>

#include "studio/scene/scene.h"

/// Area lights: a light with a size is sampled at a fixed set of points, and its light at a
/// position is the mean of the light from these points. Every shaded position uses the same
/// points, so shadow borders have no grain and films do not flicker.
///
/// The points are ordered so that the first kAreaProbes of them already cover the whole
/// light. All functions here may be called on any thread.
namespace tavora::studio {

/// How many points are tested first: where all of these are visible, or all are hidden, the
/// others need not be tested.
inline constexpr std::size_t kAreaProbes = 16;
/// How many points an area light has.
inline constexpr std::size_t kAreaPoints = 64;

/// kAreaPoints world positions, spread evenly in the ball of `radius` metres around a
/// point or spot light. Empty when the radius is not above 0.
std::vector<Imath::V3d> punctualLightPoints(const Light& light, double radius);

/// kAreaPoints unit vectors in world space, towards a directional light that appears in the
/// sky as a disc of diameter `angle` (radians, below pi), spread evenly over that disc.
/// Empty when the angle is not above 0.
std::vector<Imath::V3d> directionalLightPoints(const Light& light, double angle);

}  // namespace tavora::studio
