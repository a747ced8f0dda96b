#pragma once

#include "host/types.h"

namespace tavora {

/// Opens the settings panel on a record and returns when it is closed: null, or
/// a static text that says why it could not open. Every edit goes into the
/// record at once; Cancel brings back the record as it was. First sees to it
/// that a default-settings file exists. [interface], one panel at a time.
HostError UI_callback(HostInstance instance);

}  // namespace tavora
