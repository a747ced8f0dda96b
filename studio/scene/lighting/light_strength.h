#pragma once

#include <span>

#include "studio/scene/lighting/surface_samples.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// How strongly a point or spot light lights a scene's surfaces, without shadows. The area
/// that it lights is made of its brightest surface samples, which together receive nine
/// tenths of its light; so distant ground does not count. Both values are exceeded on a
/// tenth of that area only: neither a surface that the light nearly touches nor dimly lit
/// surroundings decide.
struct PunctualStrength {
    /// Lux times the brightest colour channel, on a surface that faces the light; 0 when it
    /// lights nothing.
    double illuminance = 0;
    double cone = 1;  ///< coneAttenuation()
};

/// Measures a point or spot light on samples from surfaceSamples(). Any thread.
PunctualStrength punctualStrength(const Light& light, std::span<const SurfaceSample> points);

/// The light's intensity in its brightest channel: lux for a directional light, candela for
/// others; 0 for a value that is negative or not a number.
double peakIntensity(const Light& light);

}  // namespace tavora::studio
