#pragma once

#include "host/types.h"
#include "plugin/record/shader_instance.h"

/// The file "tavo.default" in the host's settings directory: one state block
/// that every new record starts from. [interface]
namespace tavora {

/// Writes the record as the default file. `control` is not used.
/// Returns 2 without the file service, 0 without the directory service, else 1,
/// also when the file could not be opened; the user is told.
int cb_setDefault(HostControlId control, ShaderInstance* instance);

/// Loads the default file into the record. Returns 2 without the file service,
/// 0 when the file does not open (nothing is done then, and nothing said), else
/// 1: also when the directory service is missing or gives no path, or the file
/// is damaged; the record stays as it was then.
int loadDefaultSettings(ShaderInstance* instance);

/// Writes the default file from the record if there is none, with a warning.
void ensureDefaultSettings(ShaderInstance* instance);

}  // namespace tavora
