#pragma once

#include <span>

#include "studio/scene/lighting/surface_samples.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// How much light a lamp (a point or spot light) brings to surfaces that face it.
/// Shadows don't count. A lamp reaches those places that it lights most and that
/// together catch nine tenths of its light: far-off ground is none of them. Its
/// strength there is exceeded on a tenth of their area only, so neither a
/// surface that the lamp nearly touches nor the emptiness around decides.
struct LampReach {
    double strength = 0;  ///< lux times the brightest colour channel; 0: it lights nothing
    double cone = 1;      ///< coneAttenuation() that is exceeded on a tenth of the reached area
};

LampReach lampReach(const Light& lamp, std::span<const SurfaceSample> points);

/// Physical strength for the brightest channel: lux of a directional light,
/// candela of others; 0 for what is negative or not a number.
double peakIntensity(const Light& light);

}  // namespace tavora::studio
