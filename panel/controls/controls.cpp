#include "panel/controls/controls.h"

#include "panel/controls/whole_part.h"

namespace tavora {

HostControlId control[controlSlots] = {};
HostPanelId panelID = nullptr;
const HostPanelServices* panelserv = nullptr;
const HostDrawFunctions* drawfuncs = nullptr;
const HostRasterServices* rastfuncs = nullptr;
HostColorPicker* colorpick = nullptr;

HostControlDescription desc = {};
HostValue ival = {HOST_VALUE_INTEGER, {}};
HostValue fval = {HOST_VALUE_FLOAT, {}};
HostValue ivecval = {HOST_VALUE_INTEGER_VECTOR, {}};

namespace {

void set(int slot, HostControlAttribute attribute, const HostValue& value) {
    if (control[slot] != nullptr) panelserv->setControl(control[slot], attribute, &value);
}

bool get(int slot, HostControlAttribute attribute, HostValue& value) {
    if (control[slot] == nullptr) return false;
    panelserv->getControl(control[slot], attribute, &value);
    return true;
}

void setInteger(int slot, HostControlAttribute attribute, int value) {
    ival.of.integer = value;
    set(slot, attribute, ival);
}

void showVector(int slot, int first, int second, int third) {
    ivecval.of.vector[0] = first;
    ivecval.of.vector[1] = second;
    ivecval.of.vector[2] = third;
    set(slot, HOST_CONTROL_VALUE, ivecval);
}

int channel(float value) {
    return wholePart(static_cast<double>(value * 255.0f));
}

}  // namespace

void drawControl(int slot, int mode) {
    if (control[slot] != nullptr) panelserv->drawControl(control[slot], mode);
}

void moveControl(int slot, int x, int y) {
    setInteger(slot, HOST_CONTROL_X, x);
    setInteger(slot, HOST_CONTROL_Y, y);
}

void showInteger(int slot, int value) {
    setInteger(slot, HOST_CONTROL_VALUE, value);
}

void showFraction(int slot, float fraction) {
    fval.of.number = static_cast<double>(fraction * 100.0f);
    set(slot, HOST_CONTROL_VALUE, fval);
}

void showColor(int slot, const float color[3]) {
    showVector(slot, channel(color[0]), channel(color[1]), channel(color[2]));
}

void showDrag(int slot, float fraction) {
    showVector(slot, wholePart(static_cast<double>(fraction * 100.0f)), 0, 0);
}

void takeInteger(int slot, std::int32_t& field) {
    if (get(slot, HOST_CONTROL_VALUE, ival)) field = ival.of.integer;
}

void takeFraction(int slot, float& field) {
    if (get(slot, HOST_CONTROL_VALUE, fval)) field = static_cast<float>(fval.of.number) / 100.0f;
}

void takeColor(int slot, float (&field)[3]) {
    if (!get(slot, HOST_CONTROL_VALUE, ivecval)) return;
    for (int i = 0; i < 3; ++i)
        field[i] = static_cast<float>(ivecval.of.vector[i]) / 255.0f;
}

Drag dragOf(int slot) {
    if (!get(slot, HOST_CONTROL_VALUE, ivecval)) return {};
    return {ivecval.of.vector[0], ivecval.of.vector[2]};
}

int mouseXIn(int slot) {
    return get(slot, HOST_CONTROL_MOUSE_X, ival) ? ival.of.integer : 0;
}

}  // namespace tavora
