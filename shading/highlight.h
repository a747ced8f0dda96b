#pragma once

#include "host/sample.h"
#include "plugin/record/shader_instance.h"
#include "shading/scene_lights.h"

namespace tavora {

/// Paints flat highlights of the lights in the record's list, and the outline
/// rings around them, over the sample's colour. Every paint starts from the
/// colour at entry, so the last light that reaches the sample wins. Lights
/// flagged as making no highlights are left out.
///
/// Needs the item service; without the light service no light is flagged and
/// mode "Light" keeps the record's highlight colour. [render], under the
/// module's mutex.
void drawSpec(ShaderInstance* instance, HostSample* sample, SceneLights& lights);

}  // namespace tavora
