#include "studio/services/service_binding.h"
#include "studio/services/service_tables.h"

namespace tavora::studio {
namespace {

HostItemId cameraId(const Camera& camera) {
    return reinterpret_cast<HostItemId>(const_cast<Camera*>(&camera));
}

/// Where in the scene's cameras the item stands, or -1.
std::ptrdiff_t cameraIndex(const Scene& scene, HostItemId id) {
    const auto first = reinterpret_cast<std::uintptr_t>(scene.cameras.data());
    const auto offset = reinterpret_cast<std::uintptr_t>(id) - first;  // wraps for others
    if (id == nullptr || offset % sizeof(Camera) != 0) return -1;
    const std::uintptr_t index = offset / sizeof(Camera);
    return index < scene.cameras.size() ? static_cast<std::ptrdiff_t>(index) : -1;
}

/// The item of a type at a place in its list, or null past the end.
HostItemId itemAt(const ServiceBinding& binding, int itemType, std::ptrdiff_t place) {
    const Scene& scene = binding.scene().scene();
    const auto index = static_cast<std::size_t>(place);
    switch (itemType) {
        case HOST_ITEM_OBJECT:
            return index < scene.objects.size() ? itemId(scene.objects[index].get()) : nullptr;
        case HOST_ITEM_LIGHT:
            return index < binding.lights().lights.size() ? itemId(binding.lights().lights[index])
                                                          : nullptr;
        case HOST_ITEM_CAMERA:
            return index < scene.cameras.size() ? cameraId(scene.cameras[index]) : nullptr;
        default:
            return nullptr;
    }
}

/// Lists are flat: nothing has a parent.
HostItemId first(int itemType, HostItemId parent) {
    const ServiceBinding* binding = ServiceBinding::current();
    return binding == nullptr || parent != nullptr ? nullptr : itemAt(*binding, itemType, 0);
}

HostItemId next(HostItemId item) {
    const ServiceBinding* binding = ServiceBinding::current();
    if (binding == nullptr) return nullptr;
    // Lights come first: shaders walk them in every sample.
    const std::vector<ResolvedLight>& lights = binding->lights().lights;
    const std::ptrdiff_t light = lightIndex(binding->lights(), item);
    if (light >= 0) {
        const auto after = static_cast<std::size_t>(light) + 1;
        return after < lights.size() ? itemId(lights[after]) : nullptr;
    }
    const std::ptrdiff_t camera = cameraIndex(binding->scene().scene(), item);
    if (camera >= 0) return itemAt(*binding, HOST_ITEM_CAMERA, camera + 1);
    const std::ptrdiff_t object = binding->scene().objectIndex(item);
    if (object >= 0) return itemAt(*binding, HOST_ITEM_OBJECT, object + 1);
    return nullptr;
}

const char* name(HostItemId item) {
    const ServiceBinding* binding = ServiceBinding::current();
    if (binding == nullptr) return nullptr;
    const Scene& scene = binding->scene().scene();
    const std::ptrdiff_t light = lightIndex(binding->lights(), item);
    if (light >= 0) {
        return binding->lights().lights[static_cast<std::size_t>(light)].light->name.c_str();
    }
    const std::ptrdiff_t camera = cameraIndex(scene, item);
    if (camera >= 0) return scene.cameras[static_cast<std::size_t>(camera)].name.c_str();
    const std::ptrdiff_t object = binding->scene().objectIndex(item);
    if (object >= 0) return scene.objects[static_cast<std::size_t>(object)]->name.c_str();
    return nullptr;
}

}  // namespace

const HostItemInfo kItemInfo = {first, next, name};

}  // namespace tavora::studio
