#pragma once

#include "host/types.h"

namespace tavora::studio {

/// Finds a service by name, for the activation of modules (a HostLookup): returns its table or
/// function, or null when this host does not offer it. Has no services that need a window, so
/// that it can be used on render threads. Any thread.
void* findService(const char* name, int useMode);

/// The same, with the services of offerWindowServices(), for modules whose panels are shown.
/// Interface thread.
void* findServiceOrWindow(const char* name, int useMode);

}  // namespace tavora::studio
