#pragma once

#include <cstdint>

#include "host/services/color_picker.h"
#include "host/services/panels.h"
#include "host/services/raster.h"
#include "panel/controls/slots.h"

/// The open settings panel: its controls by slot, the services behind it, and
/// values on their way to and from controls. One set for the module, as at most
/// one settings panel is open at a time. Everything here is [interface].
namespace tavora {

extern HostControlId control[controlSlots];  ///< null where the panel has no control
extern HostPanelId panelID;
extern const HostPanelServices* panelserv;
extern const HostDrawFunctions* drawfuncs;
extern const HostRasterServices* rastfuncs;
extern HostColorPicker* colorpick;

/// The description that every control is created from in turn.
extern HostControlDescription desc;

/// The records that carry every value: integer, number, integer vector.
extern HostValue ival;
extern HostValue fval;
extern HostValue ivecval;

/// Draws a control in a mode (HOST_DRAW_...).
void drawControl(int slot, int mode);
void moveControl(int slot, int x, int y);

// Field to control. Fractions show as percent, channels as 0..255, both formed
// in single precision; channels lose their fraction.
void showInteger(int slot, int value);
void showFraction(int slot, float fraction);
void showColor(int slot, const float color[3]);
/// A drag button's resting value: the fraction as whole percent.
void showDrag(int slot, float fraction);

// Control to field, the other way round. A control that the host could not make
// leaves the field alone.
void takeInteger(int slot, std::int32_t& field);
void takeFraction(int slot, float& field);
void takeColor(int slot, float (&field)[3]);

/// What a drag button reports.
struct Drag {
    int coordinate;
    int counter;  ///< grows during one drag
};
Drag dragOf(int slot);

/// Where the mouse is in an area control, pixels from its left edge.
int mouseXIn(int slot);

}  // namespace tavora
