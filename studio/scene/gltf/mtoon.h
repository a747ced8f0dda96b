#pragma once

#include <optional>

#include "studio/scene/gltf/textures.h"

namespace tavora::studio {

/// The shading of the material of `surface` if it is an avatar's: from the material's
/// extension VRMC_materials_mtoon, or for avatars of version 0 from the file's extension VRM.
/// Empty for other materials. `textures` reads the shade texture.
std::optional<ToonShade> toonShadeOf(const gltf::Document& document, const Surface& surface,
                                     TextureReader& textures);

}  // namespace tavora::studio
