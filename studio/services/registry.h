#pragma once

#include "host/types.h"

namespace tavora::studio {

/// The host's lookup of services by name, for module activations: the service's
/// table or function, or null when this host does not offer it. Offers nothing
/// that needs a window, which is what render threads want. A HostLookup. Any
/// thread.
void* findService(const char* name, int useMode);

/// The same for modules whose panels are shown: what a window can offer as well
/// (see offerWindowServices). A HostLookup. Interface thread.
void* findServiceOrWindow(const char* name, int useMode);

}  // namespace tavora::studio
