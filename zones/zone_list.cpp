#include "zones/zone_list.h"

#include <new>

namespace tavora {
namespace {

bool isBlend(const Zone* zone) {
    return zone->blend != 0;
}

/// The zone that a new zone at `position` goes behind; null for in front of all.
Zone* lowerNeighbour(ShaderInstance* instance, double position) {
    Zone*& cursor = instance->zoneCursor;
    cursor = instance->zoneList;
    if (cursor == nullptr || static_cast<double>(cursor->position) > position) return nullptr;
    while (cursor->next != nullptr && position > static_cast<double>(cursor->next->position)) {
        cursor = cursor->next;
    }
    return cursor;
}

bool mayFollow(const Zone* lower, int blend) {
    if (lower->next == nullptr) return false;
    return blend == 0 || (!isBlend(lower) && !isBlend(lower->next));
}

void link(ShaderInstance* instance, Zone* lower, Zone* zone) {
    zone->prev = lower;
    zone->next = lower != nullptr ? lower->next : instance->zoneList;
    (lower != nullptr ? lower->next : instance->zoneList) = zone;
    if (zone->next != nullptr) zone->next->prev = zone;
}

float mean(float lower, float upper) {
    return (lower + upper) * 0.5f;
}

void takeMeanOfNeighbours(Zone* zone) {
    const Zone& lower = *zone->prev;
    const Zone& upper = *zone->next;
    for (int i = 0; i < 3; ++i)
        zone->color[i] = mean(lower.color[i], upper.color[i]);
    zone->bright = mean(lower.bright, upper.bright);
    zone->opacity = mean(lower.opacity, upper.opacity);
    zone->sat = mean(lower.sat, upper.sat);
    zone->trans = mean(lower.trans, upper.trans);
    zone->accountLightOpac = mean(lower.accountLightOpac, upper.accountLightOpac);
}

}  // namespace

int addZone(ShaderInstance* instance, double position, int blend) {
    Zone* lower = lowerNeighbour(instance, position);
    if (lower != nullptr && !mayFollow(lower, blend)) return 0;
    auto* zone = new (std::nothrow) Zone{};
    if (zone == nullptr) return 0;

    zone->position = static_cast<float>(position);
    zone->blend = blend;
    link(instance, lower, zone);
    if (zone->prev != nullptr && zone->next != nullptr) takeMeanOfNeighbours(zone);
    instance->zoneCursor = instance->selectedZone = zone;
    return 1;
}

int deleteZone(ShaderInstance* instance, double position) {
    Zone*& cursor = instance->zoneCursor;
    cursor = instance->zoneList;
    if (cursor == nullptr) return 0;
    while (cursor->next != nullptr && position >= static_cast<double>(cursor->next->position)) {
        cursor = cursor->next;
    }
    Zone* zone = cursor;
    if (zone->prev == nullptr || zone->next == nullptr) return 0;
    if (isBlend(zone->prev) && isBlend(zone->next)) return 0;

    zone->prev->next = zone->next;
    zone->next->prev = zone->prev;
    delete zone;
    instance->zoneCursor = instance->selectedZone = instance->zoneList;
    return 1;
}

Zone* moveZone(ShaderInstance* instance, double position) {
    Zone*& cursor = instance->zoneCursor;
    cursor = instance->zoneList;
    if (cursor == nullptr) return instance->selectedZone;
    while (position >= static_cast<double>(cursor->position) && cursor->next != nullptr) {
        cursor = cursor->next;
    }
    if (cursor->prev != nullptr) instance->selectedZone = cursor->prev;
    return instance->selectedZone;
}

}  // namespace tavora
