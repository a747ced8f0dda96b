#pragma once

#include <cstdint>
#include <embree3/rtcore.h>

#include "studio/render/surface_traits.h"

namespace tavora::studio {

// What Embree asks of each hit: whether it counts. All find a RayContext as the
// query's context, and the MeshGeometry as the geometry's data. Any thread.

/// Of viewing rays on what wears a surface with these traits.
RTCFilterFunctionN viewingFilter(const SurfaceTraits& worn);

/// Of shadow rays on what some of them pass.
extern const RTCFilterFunctionN kShadowFilter;

/// Of shadow rays with limits on anything at all.
extern const RTCFilterFunctionN kLimitFilter;

/// Transparencies multiply as sums of logarithms in 32 binary places, because
/// integers add up to the same in any order and the order of hits is no one's
/// promise. Halves, quarters and so on stay exact.
double lightLeft(std::int64_t darkening);

}  // namespace tavora::studio
