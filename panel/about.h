#pragma once

#include "host/services/panels.h"

namespace tavora {

/// Opens the About panel and returns when it is closed. Both arguments are
/// ignored; nothing happens when the panel cannot be made. [interface]
void cb_about(HostControlId control, void* userData);

}  // namespace tavora
