#include "studio/scene/gltf/materials.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>

#include "studio/scene/gltf/mtoon.h"
#include "studio/scene/gltf/textures.h"
#include "studio/scene/settings/shader_extras.h"
#include "studio/util/json_members.h"
#include "studio/util/text.h"
#include "studio/util/unique_names.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kLargestFloat = std::numeric_limits<float>::max();

/// Reads the materials of one file into a scene.
class MaterialReader {
  public:
    MaterialReader(const GltfSource& source, Scene& scene)
        : source_(source), scene_(scene), textures_(source, scene) {}

    void readAll() {
        const Json& materials = member(source_.document, "materials");
        for (std::size_t i = 0; i < materials.size(); ++i)
            read(materials[i], static_cast<int>(i));
        Surface plain;
        plain.name = names_.unique("Default");
        scene_.surfaces.push_back(plain);
    }

  private:
    void read(const Json& material, int index) {
        Surface surface;
        const Json& name = member(material, "name");
        surface.name = names_.unique(name.is_string() && !name.get<std::string>().empty()
                                         ? name.get<std::string>()
                                         : fmt::format("Material {}", index));
        surface.materialIndex = index;
        readBase(material, surface);
        readEmission(material, surface);
        readAlpha(material, surface);
        readExtensions(member(material, "extensions"), surface);
        readToonShade(material, surface);
        readNormalMap(material, surface);
        surface.doubleSided = member(material, "doubleSided") == true;
        surface.shader = shaderFromExtras(
            member(material, "extras"),
            oneLine(fmt::format("{}: surface {}", source_.path, surface.name)), scene_.warnings);
        readShadows(member(member(material, "extras"), "tavora"), surface);
        scene_.surfaces.push_back(std::move(surface));
    }

    /// {"tavora": {"selfShadow": false, "castsShadows": false, "receivesShadows": false}}
    void readShadows(const Json& own, Surface& surface) {
        readFlag(own, "selfShadow", surface, surface.selfShadow);
        readFlag(own, "castsShadows", surface, surface.castsShadows);
        readFlag(own, "receivesShadows", surface, surface.receivesShadows);
    }

    void readFlag(const Json& own, const char* name, const Surface& surface, bool& target) {
        const Json& flag = member(own, name);
        if (flag.is_boolean()) {
            target = flag.get<bool>();
        } else if (!flag.is_null()) {
            scene_.warnings.push_back(
                oneLine(fmt::format("{}: surface {}: its {} is neither true nor false and left out",
                                    source_.path, surface.name, name)));
        }
    }

    /// An avatar's shading takes the place of none at all, which stands beside it
    /// for programs that do not know it.
    void readToonShade(const Json& material, Surface& surface) {
        surface.toon = toonShadeOf(source_, material, surface, textures_);
        if (surface.toon) surface.unlit = false;
    }

    /// {"tavora": {"normalMap": false}} leaves it out.
    void readNormalMap(const Json& material, Surface& surface) {
        readFlag(member(member(material, "extras"), "tavora"), "normalMap", surface,
                 surface.normalMap);
        if (!surface.normalMap) return;
        const Json& info = member(material, "normalTexture");
        surface.normalTexture = textures_.readSpare(info, "normal map", surface.name);
        if (surface.normalTexture) surface.normalTexture->isData = true;
        surface.normalScale = static_cast<float>(numberOr(member(info, "scale"), 1.0));
    }

    void readBase(const Json& material, Surface& surface) {
        const Json& pbr = member(material, "pbrMetallicRoughness");
        const Json& factor = member(pbr, "baseColorFactor");
        for (std::size_t i = 0; i < 4; ++i) {
            surface.baseColor[static_cast<int>(i)] =
                static_cast<float>(componentOr(factor, i, 1.0));
        }
        surface.metallic = static_cast<float>(numberOr(member(pbr, "metallicFactor"), 1.0));
        surface.roughness = static_cast<float>(numberOr(member(pbr, "roughnessFactor"), 1.0));
        surface.baseColorTexture = textures_.read(member(pbr, "baseColorTexture"));
    }

    void readEmission(const Json& material, Surface& surface) {
        const Json& factor = member(material, "emissiveFactor");
        const Json& strength =
            member(member(member(material, "extensions"), "KHR_materials_emissive_strength"),
                   "emissiveStrength");
        for (std::size_t i = 0; i < 3; ++i) {
            const double level = componentOr(factor, i, 0.0) * numberOr(strength, 1.0);
            surface.emissive[static_cast<int>(i)] =
                static_cast<float>(std::clamp(level, 0.0, kLargestFloat));
        }
        if (surface.emissive != Imath::V3f(0)) {
            surface.emissiveTexture = textures_.read(member(material, "emissiveTexture"));
        }
    }

    static void readAlpha(const Json& material, Surface& surface) {
        const Json& mode = member(material, "alphaMode");
        if (mode == "MASK") surface.alphaMode = AlphaMode::Mask;
        if (mode == "BLEND") surface.alphaMode = AlphaMode::Blend;
        surface.alphaCutoff = static_cast<float>(numberOr(member(material, "alphaCutoff"), 0.5));
    }

    void readExtensions(const Json& extensions, Surface& surface) {
        surface.unlit = member(extensions, "KHR_materials_unlit").is_object();
        const Json& glossy = member(extensions, "KHR_materials_pbrSpecularGlossiness");
        if (glossy.is_object()) readGlossy(glossy, surface);
        const Json& through = member(extensions, "KHR_materials_transmission");
        if (through.is_object()) {
            surface.translucencyFactor =
                static_cast<float>(numberOr(member(through, "transmissionFactor"), 0.0));
            surface.translucencyTexture = textures_.read(member(through, "transmissionTexture"));
            surface.translucencyComponent = Component::Red;
        }
        const Json& diffuse = member(extensions, "KHR_materials_diffuse_transmission");
        if (diffuse.is_object()) {
            surface.translucencyFactor =
                static_cast<float>(numberOr(member(diffuse, "diffuseTransmissionFactor"), 0.0));
            surface.translucencyTexture =
                textures_.read(member(diffuse, "diffuseTransmissionTexture"));
            surface.translucencyComponent = Component::Alpha;
        }
    }

    void readGlossy(const Json& glossy, Surface& surface) {
        const Json& factor = member(glossy, "diffuseFactor");
        for (std::size_t i = 0; i < 4; ++i) {
            surface.baseColor[static_cast<int>(i)] =
                static_cast<float>(componentOr(factor, i, 1.0));
        }
        surface.baseColorTexture = textures_.read(member(glossy, "diffuseTexture"));
        surface.metallic = 0;
        surface.roughness =
            static_cast<float>(1.0 - numberOr(member(glossy, "glossinessFactor"), 1.0));
    }

    const GltfSource& source_;
    Scene& scene_;
    TextureReader textures_;
    UniqueNames names_;
};

}  // namespace

void readMaterials(const GltfSource& source, Scene& scene) {
    MaterialReader(source, scene).readAll();
}

}  // namespace tavora::studio
