#include "studio/scene/gltf/mtoon.h"

#include <algorithm>

#include "studio/util/color.h"

namespace tavora::studio {
namespace {

constexpr const char* kShadeTexture = "shade texture";

float clamped(double value, double min, double max) {
    return static_cast<float>(std::clamp(value, min, max));
}

ToonShade read(const gltf::Toon& toon, const Surface& surface, TextureReader& textures) {
    ToonShade shade;
    for (std::size_t i = 0; i < 3; ++i)
        shade.shadeColor[static_cast<int>(i)] = clamped(toon.shadeColorFactor[i], 0, 1);
    shade.shadeTexture =
        textures.readOptional(toon.shadeMultiplyTexture, kShadeTexture, surface.name);
    shade.shift = clamped(toon.shadingShiftFactor, -1, 1);
    shade.toony = clamped(toon.shadingToonyFactor, 0, 1);
    return shade;
}

/// In version 0, the blend starts at the cosine `shadeShift` and ends at
/// shadeToony * shadeShift + 1 - shadeToony.
ToonShade read(const gltf::ToonOfVersion0& toon, const Surface& surface, TextureReader& textures) {
    const double start = std::clamp(toon.shadeShift, -1.0, 1.0);
    const double toony = std::clamp(toon.shadeToony, 0.0, 1.0);
    const double end = toony * start + (1 - toony);
    ToonShade shade;
    for (std::size_t i = 0; i < 3; ++i) {
        shade.shadeColor[static_cast<int>(i)] =
            static_cast<float>(toLinear(std::clamp(toon.shadeColor[i], 0.0, 1.0)));
    }
    gltf::OptionalTexture texture;
    if (toon.shadeTexture != gltf::kNone) texture.info.emplace().index = toon.shadeTexture;
    shade.shadeTexture = textures.readOptional(texture, kShadeTexture, surface.name);
    shade.shift = clamped(-(start + end) / 2, -1, 1);
    shade.toony = clamped(1 - (end - start) / 2, 0, 1);
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
