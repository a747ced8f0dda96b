#include "panel/light_list.h"

#include <cstring>
#include <new>
#include <utility>

#include "panel/controls/controls.h"
#include "plugin/record/list_builder.h"
#include "plugin/record/notify.h"
#include "plugin/record/services.h"
#include "plugin/record/shader_instance.h"

namespace tavora {
namespace {

// The host's markup for its check-mark icon.
constexpr const char* checkMark = "\x03(i:MIMG_CHECKMARK)";

/// The name that a cell shows; overwritten by every call.
char testnamealso[lightNameSize];

const HostItemInfo* itemService() {
    if (global == nullptr) return nullptr;
    return static_cast<const HostItemInfo*>(global(HOST_ITEM_INFO_SERVICE, HOST_USE_TRANSIENT));
}

/// The scene's light of a row from 1 on, or null.
HostItemId lightOfRow(const HostItemInfo& items, int row) {
    HostItemId light = items.first(HOST_ITEM_LIGHT, nullptr);
    for (int k = 1; k < row && light != nullptr; ++k)
        light = items.next(light);
    return light;
}

/// The name in a row, cut to what an entry holds; null for a row that is not there.
const char* nameOfRow(int row) {
    if (row == 0) return "Ambient";
    const HostItemInfo* items = itemService();
    HostItemId light = items != nullptr && row > 0 ? lightOfRow(*items, row) : nullptr;
    const char* name = light != nullptr ? items->name(light) : nullptr;
    if (name == nullptr) return nullptr;
    copyLightName(name, testnamealso);
    return testnamealso;
}

bool isChosen(ShaderInstance* instance, const char* name) {
    LightEntry*& cursor = instance->lightCursor;
    for (cursor = instance->lightList; cursor != nullptr; cursor = cursor->next) {
        if (std::strcmp(cursor->name, name) == 0) return true;
    }
    return false;
}

/// Drops the first entry of the name, or appends one.
void toggle(ShaderInstance* instance, const char* name) {
    LightEntry** link = &instance->lightList;
    while (*link != nullptr && std::strcmp((*link)->name, name) != 0)
        link = &(*link)->next;
    if (*link != nullptr) {
        delete std::exchange(*link, (*link)->next);
    } else if (auto* entry = new (std::nothrow) LightEntry(lightNamed(name)); entry != nullptr) {
        *link = entry;
    }
    instance->lightCursor = instance->lightList;
}

void replaceLights(ShaderInstance* instance, LightEntry* lights) {
    freeList(instance->lightList);
    instance->lightList = instance->lightCursor = lights;
    drawControl(slot::lights, HOST_DRAW_REFRESH);
    notifyHost(instance);
}

}  // namespace

int cb_lightCount(void* userData) {
    if (userData == nullptr) return 0;
    const HostItemInfo* items = itemService();
    int rows = 1;
    if (items == nullptr) return rows;
    HostItemId light = items->first(HOST_ITEM_LIGHT, nullptr);
    for (; light != nullptr; light = items->next(light))
        ++rows;
    return rows;
}

const char* cb_multilightName(void* userData, int row, int column) {
    if (userData == nullptr) return nullptr;
    if (column == 1) return row == -1 ? "Light" : nameOfRow(row);
    if (column != 0) return nullptr;
    if (row == -1) return "On";
    const char* name = nameOfRow(row);
    if (name == nullptr) return row < 0 ? nullptr : "";
    return isChosen(static_cast<ShaderInstance*>(userData), name) ? checkMark : "";
}

int cb_multilightWidth(void* /*userData*/, int column) {
    switch (column) {
        case 0:
            return 25;
        case 1:
            return 65;
        default:
            return 0;
    }
}

void cb_listboxLights(HostControlId /*control*/, void* userData) {
    auto* instance = static_cast<ShaderInstance*>(userData);
    std::int32_t row = -1;
    takeInteger(slot::lights, row);
    const char* name = nameOfRow(row);
    if (name == nullptr) return;
    toggle(instance, name);
    notifyHost(instance);
}

void cb_allLights(HostControlId /*control*/, void* userData) {
    auto* instance = static_cast<ShaderInstance*>(userData);
    ListBuilder<LightEntry> lights;
    const int rows = cb_lightCount(instance);
    for (int row = 1; row < rows; ++row) {
        const char* name = nameOfRow(row);
        // Out of memory: the choice stays as it was.
        if (name != nullptr && !lights.append(lightNamed(name))) return;
    }
    replaceLights(instance, lights.take());
}

void cb_noneLights(HostControlId /*control*/, void* userData) {
    replaceLights(static_cast<ShaderInstance*>(userData), nullptr);
}

}  // namespace tavora
