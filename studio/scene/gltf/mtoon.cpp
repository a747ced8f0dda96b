#include "studio/scene/gltf/mtoon.h"

#include <algorithm>

#include "studio/util/color.h"
#include "studio/util/json_members.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kShadeTexture = "shade texture";

float within(double value, double least, double most) {
    return static_cast<float>(std::clamp(value, least, most));
}

ToonShade read(const Json& toon, const Surface& surface, TextureReader& textures) {
    ToonShade shade;
    for (std::size_t i = 0; i < 3; ++i) {
        const double level = componentOr(member(toon, "shadeColorFactor"), i, 0.0);
        shade.shadeColor[static_cast<int>(i)] = within(level, 0, 1);
    }
    shade.shadeTexture =
        textures.readSpare(member(toon, "shadeMultiplyTexture"), kShadeTexture, surface.name);
    shade.shift = within(numberOr(member(toon, "shadingShiftFactor"), 0.0), -1, 1);
    shade.toony = within(numberOr(member(toon, "shadingToonyFactor"), 0.9), 0, 1);
    return shade;
}

/// Version 0 names the cosines where the blend starts and, as a share of the rest,
/// where it ends, and colours as a display shows them.
ToonShade readVersion0(const Json& toon, const Surface& surface, TextureReader& textures) {
    const Json& numbers = member(toon, "floatProperties");
    const double start = std::clamp(numberOr(member(numbers, "_ShadeShift"), 0.0), -1.0, 1.0);
    const double share = std::clamp(numberOr(member(numbers, "_ShadeToony"), 0.9), 0.0, 1.0);
    const double end = share * start + (1 - share);
    ToonShade shade;
    for (std::size_t i = 0; i < 3; ++i) {
        constexpr double kUsual[] = {0.97, 0.81, 0.86};
        const double level =
            componentOr(member(member(toon, "vectorProperties"), "_ShadeColor"), i, kUsual[i]);
        shade.shadeColor[static_cast<int>(i)] =
            static_cast<float>(toLinear(std::clamp(level, 0.0, 1.0)));
    }
    const Json& texture = member(member(toon, "textureProperties"), "_ShadeTexture");
    const Json info = texture.is_null() ? Json() : Json{{"index", texture}};
    shade.shadeTexture = textures.readSpare(info, kShadeTexture, surface.name);
    shade.shift = within(-(start + end) / 2, -1, 1);
    shade.toony = within(1 - (end - start) / 2, 0, 1);
    return shade;
}

}  // namespace

std::optional<ToonShade> toonShadeOf(const GltfSource& source, const Json& material,
                                     const Surface& surface, TextureReader& textures) {
    const Json& toon = member(member(material, "extensions"), "VRMC_materials_mtoon");
    if (toon.is_object()) return read(toon, surface, textures);
    const Json& all =
        member(member(member(source.document, "extensions"), "VRM"), "materialProperties");
    const auto index = static_cast<std::size_t>(surface.materialIndex);
    if (!all.is_array() || index >= all.size()) return std::nullopt;
    if (member(all[index], "shader") != "VRM/MToon") return std::nullopt;
    return readVersion0(all[index], surface, textures);
}

}  // namespace tavora::studio
