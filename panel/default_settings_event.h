#pragma once

#include "host/types.h"
#include "plugin/record/shader_instance.h"

namespace tavora {

/// Loads the stored default settings into the record and tells the host. With a
/// control, the "Clear to Default" button, it also refreshes the open panel; null
/// leaves the panel alone. Returns what loadDefaultSettings() does; unless that
/// is 1, nothing is refreshed and nobody told. [interface]
int cb_getDefault(HostControlId control, ShaderInstance* instance);

}  // namespace tavora
