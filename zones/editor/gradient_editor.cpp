#include "zones/editor/gradient_editor.h"

#include <algorithm>
#include <cstdint>

#include "panel/controls/bindings.h"
#include "panel/controls/controls.h"
#include "panel/controls/pick_color.h"
#include "plugin/record/notify.h"
#include "plugin/record/shader_instance.h"
#include "zones/editor/gradient_painter.h"
#include "zones/zone_list.h"

namespace tavora {
namespace {

ShaderInstance* recordOf(void* userData) {
    return static_cast<ShaderInstance*>(userData);
}

void repaintAndNotify(ShaderInstance* instance) {
    drawGradient(instance);
    drawGradCon(instance);
    notifyHost(instance);
}

double positionUnderMouse(int slot) {
    return static_cast<double>(static_cast<float>(mouseXIn(slot)) / 390.0f);
}

enum ZoneMode { add, blend, edit, remove };

void editZones(ShaderInstance* instance, double position) {
    std::int32_t mode = -1;
    takeInteger(slot::zoneMode, mode);
    switch (mode) {
        case add:
            addZone(instance, position, 0);
            break;
        case blend:
            addZone(instance, position, 1);
            break;
        case edit:
            moveZone(instance, position);
            break;
        case remove:
            deleteZone(instance, position);
            break;
        default:
            break;
    }
}

void showSelectedZone(const ShaderInstance* instance) {
    const Zone* zone = instance->selectedZone;
    if (zone == nullptr) return;
    showSetting(slot::position, *instance);
    showDrag(slot::shift, zone->position);
    constexpr int others[] = {slot::opacity,         slot::bright,        slot::sat,
                              slot::trans,           slot::accountLights, slot::accountLume,
                              slot::accountLightOpac};
    showSettings(others, *instance);
    drawControl(slot::accountLightOpac,
                zone->accountLights != 0 ? HOST_DRAW_NORMAL : HOST_DRAW_GHOST);
}

/// The ordinary zone whose band, or whose neighbouring blend, holds `position`.
Zone* colorZoneAt(ShaderInstance* instance, double position) {
    Zone*& cursor = instance->zoneCursor;
    cursor = instance->zoneList;
    while (cursor->next != nullptr && position >= static_cast<double>(cursor->next->position)) {
        cursor = cursor->next;
    }
    if (cursor->blend != 0 && cursor->prev != nullptr) cursor = cursor->prev;
    return cursor;
}

/// A drag button's memory from event to event, across panels and records.
struct DragState {
    std::int64_t base = 0;     ///< the coordinate where the drag began
    std::int64_t counter = 0;  ///< last seen
    std::int64_t applied = 0;  ///< distance already turned into steps

    /// Whole steps since the last event that made one.
    std::int64_t stepsFor(const Drag& drag) {
        if (drag.counter <= counter) {
            applied = 0;
            base = std::int64_t{drag.coordinate} - drag.counter;
        }
        counter = drag.counter;
        const std::int64_t distance = drag.coordinate - base;
        const std::int64_t steps = (distance - applied) / 2;
        if (steps != 0) applied = distance;
        return steps;
    }
};

float withinAxis(double position) {
    const auto stored = static_cast<float>(position);
    if (stored <= 0.0f) return 0.0f;
    return stored >= 1.0f ? 1.0f : stored;
}

/// Gives every zone but the first and last the position that `rule` says.
template <class Rule>
void moveInnerZones(ShaderInstance* instance, Rule rule) {
    if (instance->zoneList == nullptr) return;
    Zone*& cursor = instance->zoneCursor;
    for (cursor = instance->zoneList->next; cursor != nullptr && cursor->next != nullptr;
         cursor = cursor->next) {
        cursor->position = rule(*cursor);
    }
}

/// Moves them as the drag button says; `rule` gets the position and the steps.
template <class Rule>
void dragInnerZones(int slot, DragState& drag, void* userData, Rule rule) {
    const auto steps = static_cast<double>(drag.stepsFor(dragOf(slot)));
    if (steps == 0.0) return;
    moveInnerZones(recordOf(userData), [steps, rule](const Zone& zone) {
        return withinAxis(rule(static_cast<double>(zone.position), steps));
    });
    repaintAndNotify(recordOf(userData));
}

int ordinaryZones(const ShaderInstance* instance) {
    int count = 0;
    for (const Zone* zone = instance->zoneList; zone != nullptr; zone = zone->next)
        count += zone->blend == 0 ? 1 : 0;
    return count;
}

void takeForStrip(int slot, void* userData) {
    ShaderInstance* instance = recordOf(userData);
    if (instance->selectedZone == nullptr) return;
    takeSetting(slot, *instance);
    drawGradient(instance);
    notifyHost(instance);
}

}  // namespace

void cb_areaGradControl(HostControlId /*control*/, void* userData) {
    ShaderInstance* instance = recordOf(userData);
    if (instance->activeTab != 0) return;
    editZones(instance, positionUnderMouse(slot::markerStrip));
    showSelectedZone(instance);
    repaintAndNotify(instance);
}

void cb_areaGradient(HostControlId /*control*/, void* userData) {
    ShaderInstance* instance = recordOf(userData);
    if (instance->zoneList == nullptr) return;
    pickColor("Zone Colour", colorZoneAt(instance, positionUnderMouse(slot::gradientStrip))->color);
    repaintAndNotify(instance);
}

void cb_positionControl(HostControlId /*control*/, void* userData) {
    ShaderInstance* instance = recordOf(userData);
    Zone* zone = instance->selectedZone;
    if (zone == nullptr) return;
    float position = zone->position;
    takeFraction(slot::position, position);
    if (zone->next != nullptr) position = std::min(position, zone->next->position);
    if (zone->prev != nullptr) position = std::max(position, zone->prev->position);
    if (zone != instance->zoneList) zone->position = position;
    repaintAndNotify(instance);
}

void cb_shiftControl(HostControlId /*control*/, void* userData) {
    static DragState drag;
    dragInnerZones(slot::shift, drag, userData,
                   [](double position, double steps) { return position + steps / 1000.0; });
}

void cb_scaleControl(HostControlId /*control*/, void* userData) {
    static DragState drag;
    dragInnerZones(slot::scale, drag, userData, [](double position, double steps) {
        return position + position * steps / 500.0;
    });
}

void cb_Spread(HostControlId /*control*/, void* userData) {
    ShaderInstance* instance = recordOf(userData);
    const int bands = ordinaryZones(instance) - 1;
    // A record with fewer than two ordinary zones has nothing to space out.
    if (bands >= 1) {
        const auto m = static_cast<float>(bands);
        int place = 1;
        moveInnerZones(instance, [m, &place](const Zone& zone) {
            const float even = static_cast<float>(place) / m;
            if (zone.blend != 0) return even + (1.0f / m) * -0.5f;
            ++place;
            return even;
        });
    }
    repaintAndNotify(instance);
}

void cb_opacityControl(HostControlId /*control*/, void* userData) {
    takeForStrip(slot::opacity, userData);
}
void cb_brightControl(HostControlId /*control*/, void* userData) {
    takeForStrip(slot::bright, userData);
}
void cb_satControl(HostControlId /*control*/, void* userData) {
    takeForStrip(slot::sat, userData);
}
void cb_transControl(HostControlId /*control*/, void* userData) {
    takeForStrip(slot::trans, userData);
}
void cb_accountLightOpac(HostControlId /*control*/, void* userData) {
    takeForStrip(slot::accountLightOpac, userData);
}

}  // namespace tavora
