#pragma once

#include <ImathVec.h>
#include <algorithm>

#include "studio/render/shade/sample_record.h"
#include "studio/scene/lighting/light_set.h"
#include "studio/util/deterministic_math.h"

namespace tavora::studio {

/// Whether it takes light to tell what shows: most shaded samples show their colour as it is.
inline bool needsLight(const SampleValues& values) {
    return values.diffuse != 0 || values.specular != 0;
}

/// What a sample's values show, display-referred: its colour by its own luminosity and by the
/// light it scatters (Lambert), and the glossy reflection of the lights (Blinn, "Models of
/// light reflection", 1977, with a cosine lobe of that exponent). `toViewer` is a unit
/// vector. `cosine(light)` is how far the normal faces a light; `illuminate(light, direction,
/// color)` is LightBatch::illuminate() at the sample.
template <class Cosine, class Illuminate>
Imath::V3d reflect(const SampleValues& values, unsigned exponent, const Imath::V3d& normal,
                   const Imath::V3d& toViewer, const LightSet& lights, const Cosine& cosine,
                   const Illuminate& illuminate) {
    Imath::V3d scattered = lights.ambient;
    Imath::V3d reflected(0);
    for (std::size_t i = 0; i < lights.lights.size(); ++i) {
        const double facing = cosine(i);
        if (!(facing > 0)) continue;
        Imath::V3d direction;
        Imath::V3d color;
        if (!illuminate(i, &direction.x, &color.x)) continue;
        scattered += color * facing;
        if (values.specular == 0 || !lights.lights[i].light->makesHighlights) continue;
        const Imath::V3d half = (toViewer - direction).normalized();
        reflected += color * deterministic::power(std::max(half.dot(normal), 0.0), exponent);
    }
    const Imath::V3d light = Imath::V3d(values.luminosity) + scattered * values.diffuse;
    return values.color * light + reflected * values.specular;
}

}  // namespace tavora::studio
