#pragma once

#include "host/module.h"

namespace tavora {

/// Activates the "ShaderInterface" class: keeps the host's lookup in `global`
/// and fills a HostShaderInterface, unless the version does not fit.
/// [interface]
HostActivation Interface;

}  // namespace tavora
