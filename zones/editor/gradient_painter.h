#pragma once

#include "host/services/panels.h"
#include "plugin/record/shader_instance.h"

/// The gradient on the settings panel: a strip of colour with a row of markers
/// under it. All [interface]; they take no lock and move `zoneCursor`.
namespace tavora {

/// Paints the strip, 389 columns of 20 pixels: the gradient from dark to lit
/// over a checkerboard that shows through partly opaque zones. Values are not
/// clamped: a brightness above 1 gives the host more than 255. Returns 1.
int drawGradient(ShaderInstance* instance);

/// Clears the marker row and draws a mark for each zone, "|" for ordinary, "'"
/// for blend zones, none for the last, and "^" under the selected one.
void drawGradCon(ShaderInstance* instance);

/// The panel's draw callback: borders, strip, markers. `userData` is the record.
void redraw(HostPanelId panel, void* userData);

}  // namespace tavora
