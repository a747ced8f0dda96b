#include "panel/swatches.h"

#include "panel/controls/controls.h"
#include "panel/controls/pick_color.h"
#include "plugin/record/notify.h"
#include "plugin/record/shader_instance.h"

namespace tavora {
namespace {

void pick(void* userData, int slot, float (ShaderInstance::*field)[3], const char* title) {
    auto* instance = static_cast<ShaderInstance*>(userData);
    float(&color)[3] = instance->*field;
    // Numbers typed into the colour control are where the picker starts.
    takeColor(slot, color);
    pickColor(title, color);
    showColor(slot, color);
    notifyHost(instance);
}

}  // namespace

void cb_highlightColor(HostControlId /*control*/, void* userData) {
    pick(userData, slot::highlightColor, &ShaderInstance::highlightColor, "CelSpec Colour");
}
void cb_highlightOutlineColor(HostControlId /*control*/, void* userData) {
    pick(userData, slot::outlineColor, &ShaderInstance::highlightOutlineColor, "Outline Colour");
}
void cb_edgeColor(HostControlId /*control*/, void* userData) {
    pick(userData, slot::edgeColor, &ShaderInstance::edgeColor, "Edge Colour");
}
void cb_slopeTopColor(HostControlId /*control*/, void* userData) {
    pick(userData, slot::slopeTopColor, &ShaderInstance::slopeTopColor, "Slope Colour");
}
void cb_slopeBottomColor(HostControlId /*control*/, void* userData) {
    pick(userData, slot::slopeBottomColor, &ShaderInstance::slopeBottomColor, "Slope Colour");
}
void cb_inkoverColor(HostControlId /*control*/, void* userData) {
    pick(userData, slot::inkColor, &ShaderInstance::inkoverColor, "InkOver Colour");
}
void cb_inkoverPaintColor(HostControlId /*control*/, void* userData) {
    pick(userData, slot::inkPaintColor, &ShaderInstance::inkoverPaintColor, "InkOver Paint Colour");
}

}  // namespace tavora
