#pragma once

#include <span>

#include "studio/scene/lighting/surface_samples.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// The share of a point or spot light's candela that goes in a direction whose
/// cosine with the light's own is `cosine`: 1 inside the inner cone, falling to 0
/// at the outer one by the square of where the cosine stands between them.
double coneShare(const Light& light, double cosine);

/// What is left of a light at that distance: it fades out towards its range.
double rangeWindow(const Light& light, double distance);

/// How much light a lamp (a point or spot light) brings to surfaces that face it.
/// Shadows don't count. A lamp reaches those places that it lights most and that
/// together catch nine tenths of its light: far-off ground is none of them. Its
/// strength there is exceeded on a tenth of their area only, so neither a
/// surface that the lamp nearly touches nor the emptiness around decides.
struct LampReach {
    double strength = 0;  ///< lux times the brightest colour channel; 0: it lights nothing
    double cone = 1;      ///< coneShare() that is exceeded on a tenth of the reached area
};

LampReach lampReach(const Light& lamp, std::span<const SurfaceSample> points);

/// Physical strength for the brightest channel: lux of a directional light,
/// candela of others; 0 for what is negative or not a number.
double peakIntensity(const Light& light);

}  // namespace tavora::studio
