#pragma once

#include <ImathVec.h>

#include "studio/render/light_arrivals.h"
#include "studio/render/sample_record.h"
#include "studio/render/surface_point.h"
#include "studio/scene/lighting/light_set.h"

namespace tavora::studio {

/// What a sample's values show, display-referred: its colour by its own
/// luminosity and by the light it scatters (Lambert), and the glossy reflection
/// of the lights (Blinn, "Models of light reflection", 1977, with the cosine
/// lobe `exponent`). `toViewer` is a unit vector.
Imath::V3d shownInLight(const SampleValues& values, unsigned exponent, const SurfacePoint& point,
                        const Imath::V3d& toViewer, const LightSet& rig, LightArrivals& lights);

/// Whether it takes no light to tell: most shaded samples show their colour as it is.
inline bool showsAsItIs(const SampleValues& values) {
    return values.diffuse == 0 && values.specular == 0;
}

}  // namespace tavora::studio
