#pragma once

#include <optional>

#include <nlohmann/json.hpp>

#include "studio/scene/gltf/textures.h"

namespace tavora::studio {

/// How the material of `surface` shades, where it is an avatar's: as its extension
/// VRMC_materials_mtoon says, or in avatars of version 0 the file's extension VRM.
/// Values that are none are what the extension names for absent ones.
std::optional<ToonShade> toonShadeOf(const GltfSource& source,
                                     const nlohmann::ordered_json& material, const Surface& surface,
                                     TextureReader& textures);

}  // namespace tavora::studio
