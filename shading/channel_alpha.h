#pragma once

#include "host/sample.h"
#include "plugin/record/shader_instance.h"

namespace tavora {

/// Alpha of the texture on a channel of the record's own surface, evaluated at
/// the point that the sample describes, as the host's texture evaluator returns
/// it. 0 when the record belongs to no surface or the channel has no texture.
/// [render]

/// The base-colour channel.
double cb_getCOLRApha(const ShaderInstance* instance, const HostSample* sample);

/// The translucency channel.
double cb_getTRANSLUCENTalpha(const ShaderInstance* instance, const HostSample* sample);

}  // namespace tavora
