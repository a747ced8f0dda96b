#pragma once

#include "host/sample.h"
#include "plugin/record/shader_instance.h"
#include "shading/scene_lights.h"

namespace tavora {

/// Summed colour of the lights that lit the last sample. One for the module.
extern double colorIllum[3];

/// How strongly the sample is lit: the sum over the lights of their mean colour
/// times the cosine to the normal, through the record's light power curve, at
/// most 1. Lights with negative colours can take it below 0. Counts either all
/// lights and the ambient light, or the lights of the record's list, where an
/// entry "Ambient" stands for the ambient light. Once the sum is above 1 the
/// remaining lights of a walk are not asked.
///
/// Sets `colorIllum`. Needs the item service, does without the light service.
/// [render], under the module's mutex.
double cb_lightIntensity(ShaderInstance* instance, const HostSample* sample, SceneLights& lights);

}  // namespace tavora
