#include "panel/default_settings_event.h"

#include "panel/controls/bindings.h"
#include "panel/controls/controls.h"
#include "panel/tabs.h"
#include "persist/default_settings.h"
#include "plugin/record/notify.h"
#include "zones/editor/gradient_painter.h"

namespace tavora {
namespace {

// What the panel shows of the record, in the order it is refreshed. "Max Trace
// Depth", "Use All Lights" and the light list keep what they showed.
constexpr int refreshed[] = {slot::position,
                             slot::opacity,
                             slot::bright,
                             slot::sat,
                             slot::trans,
                             slot::highlightColor,
                             slot::highlightMode,
                             slot::highlightSize,
                             slot::highlightOpacity,
                             slot::outlineSize,
                             slot::outlineOpacity,
                             slot::outlineEnable,
                             slot::outlineColor,
                             slot::forceColor,
                             slot::accountLights,
                             slot::edgeColor,
                             slot::edgeEnable,
                             slot::edgeCoverage,
                             slot::edgeSharpness,
                             slot::accountLume,
                             slot::slopeTopOpacity,
                             slot::slopeBottomOpacity,
                             slot::slopeTopColor,
                             slot::slopeBottomColor,
                             slot::slopeCenter,
                             slot::slopeEnable,
                             slot::slopeStyle,
                             slot::inkColor,
                             slot::inkPaintColor,
                             slot::inkEnable,
                             slot::inkObject,
                             slot::lightPower,
                             slot::colorTextureUse,
                             slot::accountLightOpac};

void refreshPanel(ShaderInstance* instance) {
    showSettings(refreshed, *instance);
    tab1_event(nullptr, instance);
    drawGradient(instance);
    drawGradCon(instance);
}

}  // namespace

int cb_getDefault(HostControlId button, ShaderInstance* instance) {
    const int outcome = loadDefaultSettings(instance);
    if (outcome != 1) return outcome;
    if (button != nullptr) refreshPanel(instance);
    notifyHost(instance);
    return outcome;
}

}  // namespace tavora
