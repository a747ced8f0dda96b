#pragma once

#include "host/types.h"

namespace tavora {

/// A new record with the built-in settings (see createRecord()), then the stored
/// default settings where there are any. The caller frees it with Destroy().
/// Returns null and sets `*error` when memory runs out, and leaves `*error`
/// alone otherwise. [interface]
HostInstance Create(void* privateData, HostSurfaceId context, HostError* error);

}  // namespace tavora
