#include "panel/control_table.h"

#include <algorithm>
#include <iterator>

#include "panel/about.h"
#include "panel/controls/bindings.h"
#include "panel/controls/controls.h"
#include "panel/default_settings_event.h"
#include "panel/light_list.h"
#include "panel/setting_events.h"
#include "panel/swatches.h"
#include "panel/tabs.h"
#include "persist/default_settings.h"
#include "plugin/record/zone.h"
#include "zones/editor/gradient_editor.h"

namespace tavora {
namespace {

using namespace slot;

/// What a control's class needs to know at its creation.
struct Shape {
    int type;
    int width = 0;
    int height = 0;
    const char** texts = nullptr;
};

struct ControlSpec {
    int slot;
    const char* controlClass;
    const char* label;
    Shape shape;
    int x;
    int y;
    HostControlEvent* event;
};

constexpr Shape area(int width, int height) {
    return {HOST_VALUE_AREA, width, height, nullptr};
}
constexpr Shape text(const char** lines) {
    return {HOST_VALUE_TEXT, 0, 0, lines};
}
constexpr Shape choice(const char** items, int width = 0) {
    return {HOST_VALUE_CHOICE, width, 0, items};
}
constexpr Shape range = {HOST_VALUE_RANGE};
constexpr Shape color = {HOST_VALUE_INTEGER_VECTOR};
constexpr Shape boolean = {HOST_VALUE_BOOLEAN};
constexpr Shape integer = {HOST_VALUE_INTEGER};
constexpr Shape multiList = {HOST_VALUE_MULTI_LIST, 100};
constexpr Shape swatch = {HOST_VALUE_AREA, 30, 17};

const char* tabItems[] = {"Zones", "CelSpec ", "Edges", "Slope", "InkOver", "Advanced", nullptr};
const char* modeItems[] = {"Add", "Blend", "  Edit", "Delete", nullptr};
const char* textureItems[] = {"None", "Decal", "Shaded", nullptr};
const char* highlightItems[] = {"Off", "On", "Light", nullptr};
const char* slopeItems[] = {"Mix", "Step", nullptr};
const char* powerItems[] = {"Linear", "Squared", "Cubed", nullptr};

const char* zoneLines[] = {"Zone Characteristics:", nullptr};
const char* highlightLines[] = {"Cel-Look Specular highlights:", nullptr};
const char* outlineLines[] = {"Highlight Outline:", nullptr};
const char* enableLines[] = {"Enable", nullptr};
const char* inkLines[] = {"Ink Colour", nullptr};
const char* paintLines[] = {"InkOver Colour", nullptr};
const char* objectLines[] = {"Object Only", nullptr};

constexpr int zoneModeEdit = 2;

void clearToDefaultEvent(HostControlId button, void* userData) {
    cb_getDefault(button, static_cast<ShaderInstance*>(userData));
}
void setAsDefaultEvent(HostControlId button, void* userData) {
    cb_setDefault(button, static_cast<ShaderInstance*>(userData));
}

constexpr const char* percent = "PercentControl";
constexpr const char* button = "ButtonControl";
constexpr const char* rgb = "MiniRGBControl";
constexpr const char* box = "BoolControl";
constexpr const char* line = "TextControl";
constexpr const char* patch = "AreaControl";
constexpr const char* drag = "DragButtonControl";
constexpr const char* popup = "PopupControl";
constexpr const char* buttons = "ChoiceControl";

// In the order of creation. The tab control's event comes after all others:
// see createControls().
const ControlSpec controls[] = {
    {slot::about, button, "About", area(45, 0), 5, 5, cb_about},
    {spread, button, "Spread", area(57, 0), 70, 5, cb_Spread},
    {position, percent, "Position", range, 161, 121, cb_positionControl},
    {shift, drag, "Shift  ", area(-1, 0), 70, 25, cb_shiftControl},
    {scale, drag, "Scale", area(-1, 0), 70, 45, cb_scaleControl},
    {opacity, percent, "Opacity", range, 162, 150, cb_opacityControl},
    {bright, percent, "Brightness", range, 172, 208, cb_brightControl},
    {sat, percent, "Saturation", range, 173, 234, cb_satControl},
    {trans, percent, "Transparency", range, 340, 208, cb_transControl},
    {highlightColor, rgb, "", color, 290, 121, cb_updateLW},
    {highlightSwatch, patch, "", swatch, 295, 122, cb_highlightColor},
    {highlightMode, popup, "", choice(highlightItems, 50), 463, 150, cb_boolhighlightEnable},
    {highlightSize, percent, "Size", range, 178, 121, cb_updateLW},
    {highlightOpacity, percent, "Opacity", range, 162, 150, cb_updateLW},
    {zoneTitle, line, "", text(zoneLines), 138, 187, nullptr},
    {highlightTitle, line, "", text(highlightLines), 138, 100, nullptr},
    {outlineTitle, line, "", text(outlineLines), 138, 187, nullptr},
    {outlineSize, percent, "Size", range, 178, 208, cb_updateLW},
    {outlineOpacity, percent, "Opacity", range, 162, 237, cb_updateLW},
    {outlineEnable, box, "", boolean, 500, 236, cb_boolhighlightOutlineEnable},
    {outlineEnableText, line, "", text(enableLines), 457, 236, nullptr},
    {outlineColor, rgb, "", color, 290, 210, cb_updateLW},
    {outlineSwatch, patch, "", swatch, 295, 212, cb_highlightOutlineColor},
    {slot::forceColor, percent, "Force Color", range, 374, 281, cb_forceColor},
    {tabs, "TabChoiceControl", "", choice(tabItems), 130, 69, nullptr},
    {accountLights, box, "Account for Light Colour in Zone", boolean, 310, 121,
     cb_intAccountLights},
    {clearToDefault, button, "Clear to Default", area(84, 0), 237, 325, clearToDefaultEvent},
    {setAsDefault, button, "Set as Default", area(80, 0), 327, 325, setAsDefaultEvent},
    {edgeColor, rgb, "", color, 200, 210, cb_updateLW},
    {edgeSwatch, patch, "", swatch, 200, 210, cb_edgeColor},
    {edgeEnable, box, " ", boolean, 500, 236, cb_boolEdgeEnable},
    {edgeCoverage, percent, "Coverage", range, 152, 121, cb_updateLW},
    {edgeSharpness, percent, "Sharpness", range, 148, 150, cb_updateLW},
    {accountLume, box, "Account for Luminosity in Zone", boolean, 345, 282, cb_boolAccountLume},
    {allLights, button, "  All", area(36, 0), 21, 310, cb_allLights},
    {noLights, button, "None", area(36, 0), 59, 310, cb_noneLights},
    {slopeTopOpacity, percent, "Top Opacity", range, 146, 121, cb_updateLW},
    {slopeBottomOpacity, percent, "Bottom Opac.", range, 139, 150, cb_updateLW},
    {slopeTopColor, rgb, " ", color, 295, 121, cb_updateLW},
    {slopeTopSwatch, patch, "", swatch, 300, 121, cb_slopeTopColor},
    {slopeBottomColor, rgb, " ", color, 295, 150, cb_updateLW},
    {slopeBottomSwatch, patch, "", swatch, 300, 151, cb_slopeBottomColor},
    {slopeCenter, percent, "Center", range, 173, 205, cb_updateLW},
    {slopeEnable, box, " ", boolean, 500, 236, cb_boolSlopeEnable},
    {slopeStyle, buttons, "Style", choice(slopeItems), 315, 204, cb_updateLW},
    {edgeEnableText, line, "", text(enableLines), 457, 236, nullptr},
    {slopeEnableText, line, "", text(enableLines), 457, 236, nullptr},
    {lights, "MultiListBoxControl", "Lights", multiList, 10, 88, cb_listboxLights},
    {zoneMode, buttons, "", choice(modeItems), 355, 47, nullptr},
    {gradientStrip, patch, "", area(390, 20), 140, 5, cb_areaGradient},
    {markerStrip, patch, "", area(395, 13), 138, 30, cb_areaGradControl},
    {inkColor, rgb, "", color, 295, 121, cb_updateLW},
    {inkSwatch, patch, "", swatch, 300, 121, cb_inkoverColor},
    {inkColorText, line, "", text(inkLines), 240, 121, nullptr},
    {maxTraceDepth, "NumControl", "Max Trace Depth", integer, 200, 216, cb_updateLW},
    {inkPaintColor, rgb, "", color, 295, 150, cb_updateLW},
    {inkPaintSwatch, patch, "", swatch, 300, 151, cb_inkoverPaintColor},
    {inkPaintText, line, "", text(paintLines), 217, 151, nullptr},
    {inkEnable, box, "", boolean, 500, 236, cb_boolinkoverEnable},
    {inkEnableText, line, "", text(enableLines), 457, 236, nullptr},
    {inkObject, box, "", boolean, 500, 211, cb_boolinkoverObject},
    {inkObjectText, line, "", text(objectLines), 435, 211, nullptr},
    {lightPower, popup, "Light Power", choice(powerItems, 75), 173, 125, cb_updateLW},
    {colorTextureUse, popup, "Colour Texture Use", choice(textureItems, 75), 184, 281, cb_updateLW},
    {useAllLights, box, "Use All Lights", boolean, 20, 336, cb_boolUseAllLights},
    {accountLightOpac, percent, "Light Colour Opacity", range, 310, 151, cb_accountLightOpac},
};
static_assert(std::size(controls) == 66);

void describe(const Shape& shape) {
    desc = {};
    desc.type = shape.type;
    switch (shape.type) {
        case HOST_VALUE_AREA:
            desc.of.area = {shape.width, shape.height};
            break;
        case HOST_VALUE_RANGE:
            desc.of.range = {0, 100, 0};
            break;
        case HOST_VALUE_TEXT:
            desc.of.text = {shape.texts};
            break;
        case HOST_VALUE_CHOICE:
            desc.of.choice = {shape.texts, shape.width};
            break;
        case HOST_VALUE_MULTI_LIST:
            desc.of.multiList = {shape.width,       12, nullptr, cb_lightCount, cb_multilightName,
                                 cb_multilightWidth};
            break;
        default:
            break;
    }
}

void showInitialValue(int slot, const ShaderInstance& record) {
    switch (slot) {
        case shift:
        case scale:
            showDrag(slot, record.selectedZone != nullptr ? record.selectedZone->position : 0.0f);
            break;
        case zoneMode:
            showInteger(slot, zoneModeEdit);
            break;
        case accountLume:
            showInteger(slot, 0);
            break;
        default:
            showSetting(slot, record);
    }
}

void attach(int slot, HostControlEvent* event, ShaderInstance* instance) {
    if (control[slot] == nullptr || event == nullptr) return;
    ival.of.pointer = instance;
    panelserv->setControl(control[slot], HOST_CONTROL_USER_DATA, &ival);
    ival.of.event = event;
    panelserv->setControl(control[slot], HOST_CONTROL_EVENT, &ival);
}

void create(const ControlSpec& spec, ShaderInstance* instance) {
    describe(spec.shape);
    control[spec.slot] = panelserv->addControl(panelID, spec.controlClass, &desc, spec.label);
    moveControl(spec.slot, spec.x, spec.y);
    showInitialValue(spec.slot, *instance);
    attach(spec.slot, spec.event, instance);
}

}  // namespace

void createControls(ShaderInstance* instance) {
    std::fill(std::begin(control), std::end(control), nullptr);
    for (const ControlSpec& spec : controls)
        create(spec, instance);
    attach(tabs, tab1_event, instance);
}

}  // namespace tavora
