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

/// Of shadow rays on what all of them pass.
extern const RTCFilterFunctionN kNoShadowFilter;

/// Of shadow rays with limits on anything at all.
extern const RTCFilterFunctionN kLimitFilter;

/// Share of the light, 0..1, that a ShadowProgress::darkening leaves.
double lightLeft(std::int64_t darkening);

}  // namespace tavora::studio
