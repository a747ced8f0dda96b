#pragma once

#include "host/services/panels.h"

/// Event callbacks of the controls that set one value: each takes its control's
/// value into the record (`userData`), draws or ghosts what depends on it, and
/// tells the host. Nothing is clamped. [interface]
namespace tavora {

/// Shared by the plain controls: takes all 20 of them, whichever fired.
void cb_updateLW(HostControlId control, void* userData);

void cb_forceColor(HostControlId control, void* userData);

void cb_boolhighlightEnable(HostControlId control, void* userData);
void cb_boolhighlightOutlineEnable(HostControlId control, void* userData);
void cb_boolEdgeEnable(HostControlId control, void* userData);
void cb_boolSlopeEnable(HostControlId control, void* userData);
void cb_boolinkoverEnable(HostControlId control, void* userData);
void cb_boolinkoverObject(HostControlId control, void* userData);
void cb_boolUseAllLights(HostControlId control, void* userData);
void cb_intAccountLights(HostControlId control, void* userData);

/// The one that does not tell the host: the setting changes no picture.
void cb_boolAccountLume(HostControlId control, void* userData);

}  // namespace tavora
