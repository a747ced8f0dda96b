#include "studio/services/service_binding.h"
#include "studio/services/service_tables.h"

namespace tavora::studio {
namespace {

HostItemId cameraId(const Camera& camera) {
    return reinterpret_cast<HostItemId>(const_cast<Camera*>(&camera));
}

/// The index of a camera of the scene; empty for any other item.
std::optional<std::size_t> cameraIndex(const Scene& scene, HostItemId id) {
    const auto first = reinterpret_cast<std::uintptr_t>(scene.cameras.data());
    const auto offset = reinterpret_cast<std::uintptr_t>(id) - first;  // wraps for others
    if (id == nullptr || offset % sizeof(Camera) != 0) return std::nullopt;
    const std::size_t index = offset / sizeof(Camera);
    if (index >= scene.cameras.size()) return std::nullopt;
    return index;
}

/// The item of a type at an index in its list; null past the end.
HostItemId itemAt(const ServiceBinding& binding, int itemType, std::size_t index) {
    const Scene& scene = binding.scene().scene();
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

/// Items have no parents, so a list of children is empty.
HostItemId first(int itemType, HostItemId parent) {
    const ServiceBinding* binding = ServiceBinding::current();
    return binding == nullptr || parent != nullptr ? nullptr : itemAt(*binding, itemType, 0);
}

HostItemId next(HostItemId item) {
    const ServiceBinding* binding = ServiceBinding::current();
    if (binding == nullptr) return nullptr;
    // Lights are tested first, since shaders iterate over them in every sample.
    const std::vector<ResolvedLight>& lights = binding->lights().lights;
    if (const auto light = lightIndex(binding->lights(), item))
        return *light + 1 < lights.size() ? itemId(lights[*light + 1]) : nullptr;
    if (const auto camera = cameraIndex(binding->scene().scene(), item))
        return itemAt(*binding, HOST_ITEM_CAMERA, *camera + 1);
    if (const auto object = binding->scene().objectIndex(item))
        return itemAt(*binding, HOST_ITEM_OBJECT, *object + 1);
    return nullptr;
}

const char* name(HostItemId item) {
    const ServiceBinding* binding = ServiceBinding::current();
    if (binding == nullptr) return nullptr;
    const Scene& scene = binding->scene().scene();
    if (const auto light = lightIndex(binding->lights(), item))
        return binding->lights().lights[*light].light->name.c_str();
    if (const auto camera = cameraIndex(scene, item)) return scene.cameras[*camera].name.c_str();
    if (const auto object = binding->scene().objectIndex(item))
        return scene.objects[*object]->name.c_str();
    return nullptr;
}

}  // namespace

const HostItemInfo kItemInfo = {first, next, name};

}  // namespace tavora::studio
