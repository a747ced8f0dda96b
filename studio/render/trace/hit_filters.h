#pragma once

#include <cstdint>
#include <embree3/rtcore.h>

#include "studio/render/material/material.h"

namespace tavora::studio {

// Functions that Embree calls for each hit to ask whether it counts. They find a RayQuery as
// the query's context, and as the geometry's data its MeshGeometry, or null where instances
// share the geometry. Any thread.

/// For hits of camera rays on surfaces of that material.
RTCFilterFunctionN hitFilter(const Material& material);

/// For hits of shadow rays on surfaces that some of them pass.
extern const RTCFilterFunctionN kShadowFilter;

/// For hits of shadow rays on surfaces that all of them pass.
extern const RTCFilterFunctionN kNoShadowFilter;

/// For all hits of shadow rays with limits.
extern const RTCFilterFunctionN kLimitFilter;

/// The fraction of light, 0..1, that passes an optical depth: an OcclusionState's.
double transmittanceOf(std::int64_t opticalDepth);

}  // namespace tavora::studio
