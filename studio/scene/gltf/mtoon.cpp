#include "studio/scene/gltf/mtoon.h"

#include <algorithm>

#include "studio/util/color.h"

namespace tavora::studio {
namespace {

constexpr const char* kShadeTexture = "shade texture";

float within(double value, double least, double most) {
    return static_cast<float>(std::clamp(value, least, most));
}

ToonShade read(const gltf::Toon& toon, const Surface& surface, TextureReader& textures) {
    ToonShade shade;
    for (std::size_t i = 0; i < 3; ++i)
        shade.shadeColor[static_cast<int>(i)] = within(toon.shadeColorFactor[i], 0, 1);
    shade.shadeTexture = textures.readSpare(toon.shadeMultiplyTexture, kShadeTexture, surface.name);
    shade.shift = within(toon.shadingShiftFactor, -1, 1);
    shade.toony = within(toon.shadingToonyFactor, 0, 1);
    return shade;
}

/// Version 0 names the cosines where the blend starts and, as a share of the rest,
/// where it ends.
ToonShade read(const gltf::ToonOfVersion0& toon, const Surface& surface, TextureReader& textures) {
    const double start = std::clamp(toon.shadeShift, -1.0, 1.0);
    const double share = std::clamp(toon.shadeToony, 0.0, 1.0);
    const double end = share * start + (1 - share);
    ToonShade shade;
    for (std::size_t i = 0; i < 3; ++i) {
        shade.shadeColor[static_cast<int>(i)] =
            static_cast<float>(toLinear(std::clamp(toon.shadeColor[i], 0.0, 1.0)));
    }
    gltf::SpareTexture texture;
    if (toon.shadeTexture != gltf::kNone) texture.info.emplace().index = toon.shadeTexture;
    shade.shadeTexture = textures.readSpare(texture, kShadeTexture, surface.name);
    shade.shift = within(-(start + end) / 2, -1, 1);
    shade.toony = within(1 - (end - start) / 2, 0, 1);
    return shade;
}

}  // namespace

std::optional<ToonShade> toonShadeOf(const gltf::Document& document, const Surface& surface,
                                     TextureReader& textures) {
    const gltf::Material& material = gltf::at(document.materials, surface.materialIndex);
    if (material.toon) return read(*material.toon, surface, textures);
    const auto index = static_cast<std::size_t>(surface.materialIndex);
    if (index >= document.avatarMaterials.size()) return std::nullopt;
    const gltf::ToonOfVersion0& older = document.avatarMaterials[index];
    if (older.shader != "VRM/MToon") return std::nullopt;
    return read(older, surface, textures);
}

}  // namespace tavora::studio
