#include "panel/tabs.h"

#include <span>

#include "panel/controls/bindings.h"
#include "panel/controls/controls.h"
#include "plugin/record/shader_instance.h"
#include "plugin/record/zone.h"

namespace tavora {
namespace {

using namespace slot;

/// A swatch and where it stands while its tab is shown.
struct Place {
    int slot;
    int x;
    int y;
};

constexpr int parkX = 490;
constexpr int parkY = 325;

// The order is that in which a host sees the controls go.
constexpr int erasedFirst[] = {colorTextureUse,
                               zoneTitle,
                               position,
                               sat,
                               bright,
                               opacity,
                               outlineColor,
                               accountLights,
                               outlineEnableText,
                               outlineEnable,
                               outlineOpacity,
                               outlineSize,
                               outlineTitle,
                               highlightTitle,
                               highlightSize,
                               highlightMode,
                               highlightOpacity,
                               outlineSwatch,
                               highlightSwatch};
constexpr int erasedAndParked[] = {edgeSwatch, slopeTopSwatch, slopeBottomSwatch};
constexpr int erasedLast[] = {highlightColor, edgeSharpness,   edgeCoverage,       edgeEnable,
                              edgeColor,      slopeStyle,      slopeBottomColor,   slopeCenter,
                              slopeEnable,    slopeTopColor,   slopeBottomOpacity, slopeTopOpacity,
                              edgeEnableText, slopeEnableText, inkColor,           inkSwatch,
                              inkPaintColor,  inkPaintSwatch,  inkEnable,          inkEnableText,
                              inkObject,      inkObjectText,   inkColorText,       inkPaintText,
                              lightPower,     maxTraceDepth,   accountLightOpac,   trans};

constexpr int zonesTab[] = {zoneTitle,        position, sat,           bright,
                            opacity,          zoneMode, accountLights, colorTextureUse,
                            accountLightOpac, trans};
constexpr Place highlightPlaces[] = {{outlineSwatch, 295, 212}, {highlightSwatch, 295, 122}};
constexpr int highlightTab[] = {outlineColor,   outlineEnableText, outlineEnable,  outlineOpacity,
                                outlineSize,    outlineTitle,      highlightTitle, highlightSize,
                                highlightMode,  highlightOpacity,  highlightColor, outlineSwatch,
                                highlightSwatch};
constexpr Place edgePlaces[] = {{edgeSwatch, 205, 211}};
constexpr int edgesTab[] = {edgeSharpness, edgeCoverage,   edgeEnable,
                            edgeColor,     edgeEnableText, edgeSwatch};
constexpr Place slopePlaces[] = {{slopeTopSwatch, 303, 122}, {slopeBottomSwatch, 303, 152}};
constexpr int slopeTab[] = {slopeStyle,     slopeBottomColor,   slopeCenter,     slopeEnable,
                            slopeTopColor,  slopeBottomOpacity, slopeTopOpacity, slopeEnableText,
                            slopeTopSwatch, slopeBottomSwatch};
constexpr int inkTab[] = {inkColor,     inkSwatch,     inkPaintColor, inkPaintSwatch,
                          inkEnable,    inkEnableText, inkObject,     inkObjectText,
                          inkColorText, inkPaintText,  maxTraceDepth};
constexpr int advancedTab[] = {lightPower};

struct Tab {
    std::span<const Place> places;
    std::span<const int> drawn;
    void (*ghost)(const ShaderInstance&);
};

void drawAll(std::span<const int> slots, int mode) {
    for (int slot : slots)
        drawControl(slot, mode);
}

void ghostUnless(bool enabled, std::span<const int> slots) {
    if (!enabled) drawAll(slots, HOST_DRAW_GHOST);
}

void ghostZones(const ShaderInstance& record) {
    const Zone* zone = record.selectedZone;
    constexpr int tint[] = {accountLightOpac};
    ghostUnless(zone != nullptr && zone->accountLights != 0, tint);
}

void ghostHighlight(const ShaderInstance& record) {
    drawControl(zoneMode, HOST_DRAW_GHOST);
    constexpr int outline[] = {outlineSize, outlineOpacity, outlineColor};
    ghostUnless(record.highlightOutlineEnable != 0, outline);
    constexpr int disc[] = {highlightSize, highlightOpacity, highlightColor};
    ghostUnless(record.highlightEnable != 0, disc);
}

void ghostEdges(const ShaderInstance& record) {
    drawControl(zoneMode, HOST_DRAW_GHOST);
    constexpr int edge[] = {edgeColor, edgeCoverage, edgeSharpness};
    ghostUnless(record.edgeEnable != 0, edge);
}

void ghostSlope(const ShaderInstance& record) {
    drawControl(zoneMode, HOST_DRAW_GHOST);
    constexpr int slope[] = {slopeTopOpacity,  slopeBottomOpacity, slopeTopColor,
                             slopeBottomColor, slopeStyle,         slopeCenter};
    ghostUnless(record.slopeEnable != 0, slope);
}

void ghostInk(const ShaderInstance& record) {
    constexpr int ink[] = {inkColor,      inkSwatch,    inkPaintColor, inkPaintSwatch, inkObject,
                           inkObjectText, inkColorText, inkPaintText,  maxTraceDepth};
    ghostUnless(record.inkoverEnable != 0, ink);
    constexpr int colors[] = {inkColor, inkSwatch, inkPaintColor, inkPaintSwatch};
    ghostUnless(record.inkoverTranslucent == 0, colors);
}

void ghostNothing(const ShaderInstance& /*record*/) {}

constexpr Tab tabLayouts[] = {
    {{}, zonesTab, ghostZones},
    {highlightPlaces, highlightTab, ghostHighlight},
    {edgePlaces, edgesTab, ghostEdges},
    {slopePlaces, slopeTab, ghostSlope},
    {{}, inkTab, ghostInk},
    {{}, advancedTab, ghostNothing},
};

void eraseTabControls() {
    drawAll(erasedFirst, HOST_DRAW_ERASE);
    moveControl(outlineSwatch, parkX, parkY);
    moveControl(highlightSwatch, parkX, parkY);
    for (int slot : erasedAndParked) {
        drawControl(slot, HOST_DRAW_ERASE);
        moveControl(slot, parkX, parkY);
    }
    drawAll(erasedLast, HOST_DRAW_ERASE);
}

void drawLightButtons(const ShaderInstance& record) {
    constexpr int buttons[] = {allLights, noLights};
    drawAll(buttons, HOST_DRAW_NORMAL);
    constexpr int choice[] = {allLights, noLights, lights};
    ghostUnless(record.useAllLights == 0, choice);
}

void drawTab(const Tab& tab, const ShaderInstance& record) {
    for (const Place& place : tab.places)
        moveControl(place.slot, place.x, place.y);
    drawAll(tab.drawn, HOST_DRAW_NORMAL);
    tab.ghost(record);
}

}  // namespace

void tab1_event(HostControlId /*control*/, void* userData) {
    auto& record = *static_cast<ShaderInstance*>(userData);
    takeSetting(tabs, record);
    drawControl(accountLume, HOST_DRAW_ERASE);
    drawControl(slot::forceColor, HOST_DRAW_ERASE);
    drawControl(slot::forceColor, HOST_DRAW_NORMAL);
    eraseTabControls();
    drawLightButtons(record);
    const std::span<const Tab> layouts = tabLayouts;
    const auto tab = static_cast<std::size_t>(record.activeTab);
    if (tab < layouts.size()) drawTab(layouts[tab], record);
}

}  // namespace tavora
