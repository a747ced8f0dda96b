#include "plugin/instance_life.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <new>

#include "persist/default_settings.h"
#include "plugin/shader_instance.h"
#include "zones/preview_grid.h"
#include "zones/zone.h"
#include "zones/zone_list.h"

namespace tavora {
namespace {

struct DefaultZone {
    double position;
    float color[3];
};

// From the top down: each zone lands in front of the one before it, so the
// black one is added last and ends selected.
constexpr DefaultZone defaultZones[] = {
    {1.0, {1.0f, 1.0f, 1.0f}},   //
    {0.75, {1.0f, 0.0f, 0.0f}},  //
    {0.5, {0.0f, 1.0f, 0.0f}},   //
    {0.25, {0.0f, 0.0f, 1.0f}},  //
    {0.0, {0.0f, 0.0f, 0.0f}},
};

bool addDefaultZones(ShaderInstance* record) {
    for (const DefaultZone& zone : defaultZones) {
        if (addZone(record, zone.position, 0) == 0) return false;
        std::copy(std::begin(zone.color), std::end(zone.color), record->zoneCursor->color);
    }
    return true;
}

bool copyZones(ShaderInstance& from, ZoneListBuilder& copies) {
    for (from.zoneCursor = from.zoneList; from.zoneCursor != nullptr;
         from.zoneCursor = from.zoneCursor->next) {
        if (!copies.append(*from.zoneCursor)) return false;
    }
    return true;
}

bool copyLights(ShaderInstance& from, LightListBuilder& copies) {
    for (from.lightCursor = from.lightList; from.lightCursor != nullptr;
         from.lightCursor = from.lightCursor->next) {
        if (!copies.append(from.lightCursor->name)) return false;
    }
    return true;
}

struct DestroyRecord {
    void operator()(ShaderInstance* record) const { Destroy(record); }
};

}  // namespace

HostInstance Create(void* /*privateData*/, HostSurfaceId context, HostError* error) {
    std::unique_ptr<ShaderInstance, DestroyRecord> record(new (std::nothrow) ShaderInstance{});
    if (record == nullptr || !addDefaultZones(record.get())) {
        if (error != nullptr) *error = "Tavora: not enough memory for the settings of a surface";
        return nullptr;
    }
    record->context = context;
    cb_getDefault(nullptr, record.get());
    fillPreviewGrid();
    return record.release();
}

void Destroy(HostInstance instance) {
    auto* record = static_cast<ShaderInstance*>(instance);
    if (record == nullptr) return;
    freeLights(record->lightList);
    freeZones(record->zoneList);
    delete record;
}

bool copyRecord(ShaderInstance& to, ShaderInstance& from) {
    ZoneListBuilder zones;
    LightListBuilder lights;
    if (!copyZones(from, zones) || !copyLights(from, lights)) return false;

    freeZones(to.zoneList);
    freeLights(to.lightList);
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
