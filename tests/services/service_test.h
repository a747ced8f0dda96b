#pragma once

#include "host/types.h"
#include "studio/services/registry.h"

namespace tavora::studio {

/// The table of a service, as a module gets it.
template <typename Table>
const Table& serviceTable(const char* name) {
    return *static_cast<const Table*>(findService(name, HOST_USE_TRANSIENT));
}

/// The one function of a service.
template <typename Function>
Function* serviceFunction(const char* name) {
    return reinterpret_cast<Function*>(findService(name, HOST_USE_TRANSIENT));
}

}  // namespace tavora::studio
