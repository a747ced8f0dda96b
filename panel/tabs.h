#pragma once

#include "host/services/panels.h"

namespace tavora {

/// The tab control's event, and the layout of the current tab: takes the tab
/// from its control, erases what belongs to tabs, then draws and ghosts what
/// belongs to this one. `control` is not used and may be null; `userData` is
/// the record. Tells the host nothing. [interface]
void tab1_event(HostControlId control, void* userData);

}  // namespace tavora
