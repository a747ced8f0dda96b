#pragma once

#include <cstring>

#include "plugin/services.h"
#include "plugin/shader_instance.h"

namespace tavora {

/// The scene's first light, or null. Needs the item service.
inline HostItemId firstLight() {
    return iteminfo->first(HOST_ITEM_LIGHT, nullptr);
}

/// Whether the light bears exactly the entry's name. Needs the item service.
inline bool isNamed(HostItemId light, const LightEntry& entry) {
    const char* name = iteminfo->name(light);
    return name != nullptr && std::strcmp(name, entry.name) == 0;
}

}  // namespace tavora
