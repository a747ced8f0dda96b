#include "studio/services/registry.h"

#include <cstring>
#include <span>

#include "studio/services/service_tables.h"
#include "studio/services/window_services.h"

namespace tavora::studio {
namespace {

struct Entry {
    const char* name;
    void* service;
};

void* findIn(std::span<const Entry> entries, const char* name) {
    for (const Entry& entry : entries) {
        if (name != nullptr && std::strcmp(name, entry.name) == 0) return entry.service;
    }
    return nullptr;
}

WindowServices windowServices;

template <typename Table>
void* table(const Table& service) {
    return const_cast<Table*>(&service);
}

template <typename Result, typename... Arguments>
void* function(Result (*service)(Arguments...)) {
    return reinterpret_cast<void*>(service);
}

}  // namespace

void offerWindowServices(const WindowServices& services) {
    windowServices = services;
}

void* findService(const char* name, int /*useMode*/) {
    const Entry entries[] = {
        {HOST_MULTITHREADING_SERVICE, table(kMultithreading)},
        {HOST_ITEM_INFO_SERVICE, table(kItemInfo)},
        {HOST_LIGHT_INFO_SERVICE, table(kLightInfo)},
        {HOST_MESSAGES_SERVICE, table(kMessages)},
        {HOST_DIRECTORY_INFO_SERVICE, function(directoryInfo)},
        {HOST_FILE_IO_SERVICE, table(kFileIo)},
        {HOST_INSTANCE_UPDATE_SERVICE, function(instanceUpdate)},
        {HOST_SURFACE_SERVICE, table(kSurfaceFunctions)},
        {HOST_TEXTURE_SERVICE, table(kTextureFunctions)},
    };
    return findIn(entries, name);
}

void* findServiceOrWindow(const char* name, int useMode) {
    const Entry entries[] = {
        {HOST_PANELS_SERVICE, const_cast<HostPanelServices*>(windowServices.panels)},
        {HOST_RASTER_SERVICE, const_cast<HostRasterServices*>(windowServices.raster)},
        {HOST_COLOR_PICKER_SERVICE, function(windowServices.colorPicker)},
    };
    void* const service = findIn(entries, name);
    return service != nullptr ? service : findService(name, useMode);
}

}  // namespace tavora::studio
