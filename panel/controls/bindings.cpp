#include "panel/controls/bindings.h"

#include <algorithm>
#include <array>
#include <variant>

#include "panel/controls/controls.h"
#include "plugin/record/zone.h"

namespace tavora {
namespace {

using Record = ShaderInstance;
using Field = std::variant<std::int32_t Record::*, float Record::*, float (Record::*)[3],
                           std::int32_t Zone::*, float Zone::*>;

struct Binding {
    int slot;
    Field field;
};

constexpr Binding bindings[] = {
    {slot::position, &Zone::position},
    {slot::opacity, &Zone::opacity},
    {slot::bright, &Zone::bright},
    {slot::sat, &Zone::sat},
    {slot::trans, &Zone::trans},
    {slot::accountLights, &Zone::accountLights},
    {slot::accountLightOpac, &Zone::accountLightOpac},
    {slot::accountLume, &Zone::accountLume},
    {slot::forceColor, &Record::forceColor},
    {slot::tabs, &Record::activeTab},
    {slot::useAllLights, &Record::useAllLights},
    {slot::lightPower, &Record::lightPower},
    {slot::colorTextureUse, &Record::colorTextureUse},
    {slot::highlightMode, &Record::highlightEnable},
    {slot::highlightSize, &Record::highlightSize},
    {slot::highlightOpacity, &Record::highlightOpacity},
    {slot::highlightColor, &Record::highlightColor},
    {slot::outlineEnable, &Record::highlightOutlineEnable},
    {slot::outlineSize, &Record::highlightOutlineSize},
    {slot::outlineOpacity, &Record::highlightOutlineOpacity},
    {slot::outlineColor, &Record::highlightOutlineColor},
    {slot::edgeEnable, &Record::edgeEnable},
    {slot::edgeCoverage, &Record::edgeCoverage},
    {slot::edgeSharpness, &Record::edgeSharpness},
    {slot::edgeColor, &Record::edgeColor},
    {slot::slopeEnable, &Record::slopeEnable},
    {slot::slopeStyle, &Record::slopeStyle},
    {slot::slopeCenter, &Record::slopeCenter},
    {slot::slopeTopColor, &Record::slopeTopColor},
    {slot::slopeTopOpacity, &Record::slopeTopOpacity},
    {slot::slopeBottomColor, &Record::slopeBottomColor},
    {slot::slopeBottomOpacity, &Record::slopeBottomOpacity},
    {slot::inkEnable, &Record::inkoverEnable},
    {slot::inkObject, &Record::inkoverObject},
    {slot::inkColor, &Record::inkoverColor},
    {slot::inkPaintColor, &Record::inkoverPaintColor},
    {slot::maxTraceDepth, &Record::maxTraceDepth},
};

const Binding* bindingOf(int slot) {
    const auto* found = std::find_if(std::begin(bindings), std::end(bindings),
                                     [slot](const Binding& b) { return b.slot == slot; });
    return found == std::end(bindings) ? nullptr : found;
}

void show(int slot, std::int32_t value) {
    showInteger(slot, value);
}
void show(int slot, float value) {
    showFraction(slot, value);
}
void show(int slot, const float (&value)[3]) {
    showColor(slot, value);
}

void take(int slot, std::int32_t& value) {
    takeInteger(slot, value);
}
void take(int slot, float& value) {
    takeFraction(slot, value);
}
void take(int slot, float (&value)[3]) {
    takeColor(slot, value);
}

/// Calls `use` with the field that is meant, if there is one to speak of.
template <class AnyRecord, class Use>
struct OnField {
    AnyRecord& record;
    Use use;

    template <class T>
    void operator()(T Record::*field) const {
        use(record.*field);
    }
    template <class T>
    void operator()(T Zone::*field) const {
        if (record.selectedZone != nullptr) use(record.selectedZone->*field);
    }
};

template <class AnyRecord, class Use>
void onField(int slot, AnyRecord& record, Use use) {
    if (const Binding* binding = bindingOf(slot)) {
        std::visit(OnField<AnyRecord, Use>{record, use}, binding->field);
    }
}

}  // namespace

void showSetting(int slot, const ShaderInstance& record) {
    onField(slot, record, [slot](const auto& field) { show(slot, field); });
}

void takeSetting(int slot, ShaderInstance& record) {
    onField(slot, record, [slot](auto& field) { take(slot, field); });
}

bool hasSetting(int slot) {
    return bindingOf(slot) != nullptr;
}

void showSettings(std::span<const int> slots, const ShaderInstance& record) {
    for (int slot : slots)
        showSetting(slot, record);
}

void takeSettings(std::span<const int> slots, ShaderInstance& record) {
    for (int slot : slots)
        takeSetting(slot, record);
}

}  // namespace tavora
