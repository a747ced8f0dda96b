#pragma once

#include <optional>

#include "studio/scene/gltf/textures.h"

namespace tavora::studio {

/// How the material of `surface` shades, where it is an avatar's: as its extension
/// VRMC_materials_mtoon says, or in avatars of version 0 the file's extension VRM.
std::optional<ToonShade> toonShadeOf(const gltf::Document& document, const Surface& surface,
                                     TextureReader& textures);

}  // namespace tavora::studio
