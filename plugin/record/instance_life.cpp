#include "plugin/record/instance_life.h"

#include <algorithm>
#include <iterator>
#include <new>

#include "plugin/record/list_builder.h"
#include "plugin/record/shader_instance.h"
#include "plugin/record/zone.h"

namespace tavora {
namespace {

struct DefaultZone {
    float position;
    float color[3];
};

constexpr DefaultZone defaultZones[] = {
    {0.0f, {0.0f, 0.0f, 0.0f}},  //
    {0.25f, {0.0f, 0.0f, 1.0f}}, {0.5f, {0.0f, 1.0f, 0.0f}},
    {0.75f, {1.0f, 0.0f, 0.0f}}, {1.0f, {1.0f, 1.0f, 1.0f}},
};

bool appendDefaultZones(ListBuilder<Zone>& zones) {
    for (const DefaultZone& preset : defaultZones) {
        Zone zone;
        zone.position = preset.position;
        std::copy(std::begin(preset.color), std::end(preset.color), zone.color);
        if (!zones.append(zone)) return false;
    }
    return true;
}

bool copyZones(ShaderInstance& from, ListBuilder<Zone>& copies) {
    for (from.zoneCursor = from.zoneList; from.zoneCursor != nullptr;
         from.zoneCursor = from.zoneCursor->next) {
        if (!copies.append(*from.zoneCursor)) return false;
    }
    return true;
}

bool copyLights(ShaderInstance& from, ListBuilder<LightEntry>& copies) {
    for (from.lightCursor = from.lightList; from.lightCursor != nullptr;
         from.lightCursor = from.lightCursor->next) {
        if (!copies.append(lightNamed(from.lightCursor->name))) return false;
    }
    return true;
}

}  // namespace

ShaderInstance* createRecord(HostSurfaceId context) {
    ListBuilder<Zone> zones;
    auto* record = new (std::nothrow) ShaderInstance{};
    if (record == nullptr) return nullptr;
    if (!appendDefaultZones(zones)) {
        Destroy(record);
        return nullptr;
    }
    record->context = context;
    record->zoneList = record->zoneCursor = record->selectedZone = zones.take();
    return record;
}

void Destroy(HostInstance instance) {
    auto* record = static_cast<ShaderInstance*>(instance);
    if (record == nullptr) return;
    freeList(record->lightList);
    freeList(record->zoneList);
    delete record;
}

bool copyRecord(ShaderInstance& to, ShaderInstance& from) {
    ListBuilder<Zone> zones;
    ListBuilder<LightEntry> lights;
    if (!copyZones(from, zones) || !copyLights(from, lights)) return false;

    freeList(to.zoneList);
    freeList(to.lightList);
    // Texture channels are those of the target's own surface.
    HostSurfaceId context = to.context;
    to = from;
    to.context = context;
    to.zoneList = to.zoneCursor = to.selectedZone = zones.take();
    to.lightList = to.lightCursor = lights.take();
    return true;
}

HostError Copy(HostInstance to, HostInstance from) {
    copyRecord(*static_cast<ShaderInstance*>(to), *static_cast<ShaderInstance*>(from));
    return nullptr;
}

}  // namespace tavora
