#pragma once

#include "host/types.h"

namespace tavora {

/// The line that the host lists the shader under, in a buffer of the record's
/// own: valid as long as the record. [interface]
const char* DescLn(HostInstance instance);

/// The host's flag word (HOST_SHADER_...): what an evaluation may change.
/// Transparency only while some zone of the record has any. [interface]
unsigned int Flags(HostInstance instance);

}  // namespace tavora
