#pragma once

#include "host/services/panels.h"

/// Event callbacks of the gradient editor: what a click, a drag or a slider does
/// to the zones. Each writes the record (`userData`), repaints what it changed
/// and tells the host. [interface]; they take no lock. Without a selected zone
/// the controls of the zone do nothing.
namespace tavora {

/// A click in the marker strip: adds, blends, selects or deletes, as the
/// zone-mode choice says, then shows the selected zone. Only on the first tab.
void cb_areaGradControl(HostControlId control, void* userData);

/// A click in the strip: picks a colour for the ordinary zone under the mouse.
void cb_areaGradient(HostControlId control, void* userData);

/// Moves the selected zone, between its neighbours. The first zone stays.
void cb_positionControl(HostControlId control, void* userData);

/// Drags that move all zones but the first and last: by 0.001 a step, or by
/// 1/500 of their position a step; two units of drag make a step.
void cb_shiftControl(HostControlId control, void* userData);
void cb_scaleControl(HostControlId control, void* userData);

/// Spaces the ordinary zones evenly, blend zones halfway between them.
void cb_Spread(HostControlId control, void* userData);

// Sliders of the selected zone. Nothing is clamped here.
void cb_opacityControl(HostControlId control, void* userData);
void cb_brightControl(HostControlId control, void* userData);
void cb_satControl(HostControlId control, void* userData);
void cb_transControl(HostControlId control, void* userData);
void cb_accountLightOpac(HostControlId control, void* userData);

}  // namespace tavora
