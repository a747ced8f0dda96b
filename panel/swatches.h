#pragma once

#include "host/services/panels.h"

/// Event callbacks of the colour swatches: each opens the host's colour picker
/// on the colour that its neighbouring control shows, stores what was picked,
/// shows it there and tells the host. [interface]
namespace tavora {

void cb_highlightColor(HostControlId control, void* userData);
void cb_highlightOutlineColor(HostControlId control, void* userData);
void cb_edgeColor(HostControlId control, void* userData);
void cb_slopeTopColor(HostControlId control, void* userData);
void cb_slopeBottomColor(HostControlId control, void* userData);
void cb_inkoverColor(HostControlId control, void* userData);
void cb_inkoverPaintColor(HostControlId control, void* userData);

}  // namespace tavora
