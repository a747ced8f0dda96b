#pragma once

#include "host/types.h"

namespace tavora::studio {

/// The host's one lookup of services by name, for module activations: the
/// service's table or function, or null when this host does not offer it.
/// A HostLookup. Any thread.
void* findService(const char* name, int useMode);

}  // namespace tavora::studio
