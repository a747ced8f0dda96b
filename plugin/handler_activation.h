#pragma once

#include "host/module.h"

namespace tavora {

/// Activates the "ShaderHandler" class: takes the host's services into the
/// globals of plugin/record/services.h and fills a HostShaderHandler. A missing
/// service counts before a version that does not fit; either leaves the record
/// alone. [interface]
HostActivation Handler;

}  // namespace tavora
