#include "panel/setting_events.h"

#include <span>

#include "panel/controls/bindings.h"
#include "panel/controls/controls.h"
#include "plugin/record/notify.h"
#include "plugin/record/shader_instance.h"
#include "plugin/record/zone.h"

namespace tavora {
namespace {

using namespace slot;

ShaderInstance& recordOf(void* userData) {
    return *static_cast<ShaderInstance*>(userData);
}

constexpr int plainControls[] = {
    highlightSize,    highlightColor, outlineColor,  edgeColor,        slopeTopColor,
    slopeBottomColor, inkColor,       inkPaintColor, highlightOpacity, outlineSize,
    outlineOpacity,   edgeCoverage,   edgeSharpness, slopeTopOpacity,  slopeBottomOpacity,
    slopeCenter,      slopeStyle,     lightPower,    maxTraceDepth,    colorTextureUse};

void drawOrGhost(bool enabled, std::span<const int> slots) {
    for (int slot : slots)
        drawControl(slot, enabled ? HOST_DRAW_NORMAL : HOST_DRAW_GHOST);
}

/// Takes a switch, and draws or ghosts what it switches.
void takeSwitch(void* userData, int slot, std::int32_t ShaderInstance::*on,
                std::span<const int> switched) {
    ShaderInstance& record = recordOf(userData);
    takeSetting(slot, record);
    drawOrGhost(record.*on != 0, switched);
    notifyHost(&record);
}

}  // namespace

void cb_updateLW(HostControlId /*control*/, void* userData) {
    takeSettings(plainControls, recordOf(userData));
    notifyHost(&recordOf(userData));
}

void cb_forceColor(HostControlId /*control*/, void* userData) {
    takeSetting(forceColor, recordOf(userData));
    notifyHost(&recordOf(userData));
}

void cb_boolhighlightEnable(HostControlId /*control*/, void* userData) {
    ShaderInstance& record = recordOf(userData);
    takeSetting(highlightMode, record);
    const bool on = record.highlightEnable != 0;
    constexpr int values[] = {highlightSize, highlightOpacity};
    drawOrGhost(on, values);
    drawControl(highlightSwatch, on ? HOST_DRAW_NORMAL : HOST_DRAW_ERASE);
    // In mode "Light" the colour comes from the lights.
    constexpr int color[] = {highlightColor};
    drawOrGhost(record.highlightEnable == 1, color);
    notifyHost(&record);
}

void cb_boolhighlightOutlineEnable(HostControlId /*control*/, void* userData) {
    constexpr int outline[] = {outlineSize, outlineOpacity, outlineColor};
    takeSwitch(userData, outlineEnable, &ShaderInstance::highlightOutlineEnable, outline);
}

void cb_boolEdgeEnable(HostControlId /*control*/, void* userData) {
    constexpr int edge[] = {edgeColor, edgeCoverage, edgeSharpness};
    takeSwitch(userData, edgeEnable, &ShaderInstance::edgeEnable, edge);
}

void cb_boolSlopeEnable(HostControlId /*control*/, void* userData) {
    constexpr int slope[] = {slopeTopOpacity,  slopeBottomOpacity, slopeTopColor,
                             slopeBottomColor, slopeCenter,        slopeStyle};
    takeSwitch(userData, slopeEnable, &ShaderInstance::slopeEnable, slope);
}

void cb_boolinkoverEnable(HostControlId /*control*/, void* userData) {
    ShaderInstance& record = recordOf(userData);
    takeSetting(inkEnable, record);
    constexpr int ink[] = {inkColor, inkPaintColor, inkObject, maxTraceDepth};
    drawOrGhost(record.inkoverEnable != 0, ink);
    constexpr int colors[] = {inkColor, inkSwatch, inkPaintColor, inkPaintSwatch};
    if (record.inkoverTranslucent != 0) drawOrGhost(false, colors);
    notifyHost(&record);
}

void cb_boolinkoverObject(HostControlId /*control*/, void* userData) {
    takeSetting(inkObject, recordOf(userData));
    notifyHost(&recordOf(userData));
}

void cb_boolUseAllLights(HostControlId /*control*/, void* userData) {
    ShaderInstance& record = recordOf(userData);
    takeSetting(useAllLights, record);
    constexpr int choice[] = {lights, noLights, allLights};
    drawOrGhost(record.useAllLights == 0, choice);
    notifyHost(&record);
}

void cb_intAccountLights(HostControlId /*control*/, void* userData) {
    ShaderInstance& record = recordOf(userData);
    if (record.selectedZone == nullptr) return;
    takeSetting(accountLights, record);
    constexpr int strength[] = {accountLightOpac};
    drawOrGhost(record.selectedZone->accountLights != 0, strength);
    notifyHost(&record);
}

void cb_boolAccountLume(HostControlId /*control*/, void* userData) {
    takeSetting(accountLume, recordOf(userData));
}

}  // namespace tavora
