#include "studio/scene/gltf/materials.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "studio/scene/gltf/mtoon.h"
#include "studio/scene/gltf/textures.h"
#include "studio/scene/settings/shader_extras.h"
#include "studio/util/json_members.h"
#include "studio/util/text.h"
#include "studio/util/unique_names.h"

namespace tavora::studio {
namespace {

using gltf::Json;

constexpr double kLargestFloat = std::numeric_limits<float>::max();

Imath::V4f colorOf(const std::array<double, 4>& values) {
    Imath::V4f color;
    for (std::size_t i = 0; i < 4; ++i)
        color[static_cast<int>(i)] = static_cast<float>(values[i]);
    return color;
}

void readEmission(const gltf::Material& material, Surface& surface) {
    for (std::size_t i = 0; i < 3; ++i) {
        const double emission = material.emissiveFactor[i] * material.emissiveStrength;
        surface.emissive[static_cast<int>(i)] =
            static_cast<float>(std::clamp(emission, 0.0, kLargestFloat));
    }
}

void readGlossy(const gltf::SpecularGlossiness& glossy, Surface& surface) {
    surface.baseColor = colorOf(glossy.diffuseFactor);
    surface.metallic = 0;
    surface.roughness = static_cast<float>(1.0 - glossy.glossinessFactor);
}

/// How much light passes through the material: from one of two extensions.
const std::optional<gltf::Transmission>& transmissionOf(const gltf::Material& material) {
    return material.diffuseTransmission ? material.diffuseTransmission : material.transmission;
}

/// Reads the members that are numbers.
void readNumbers(const gltf::Material& material, Surface& surface) {
    surface.baseColor = colorOf(material.baseColorFactor);
    surface.metallic = static_cast<float>(material.metallicFactor.value_or(1));
    surface.roughness = static_cast<float>(material.roughnessFactor);
    surface.alphaCutoff = static_cast<float>(material.alphaCutoff);
    readEmission(material, surface);
    if (material.specularGlossiness) readGlossy(*material.specularGlossiness, surface);
    if (const auto& transmission = transmissionOf(material))
        surface.translucencyFactor = static_cast<float>(transmission->factor);
    if (surface.normalMap) surface.normalScale = static_cast<float>(material.normalScale);
}

void updateTransform(const std::optional<gltf::TextureInfo>& info, std::optional<TextureUse>& use) {
    if (info && use) setTransform(*info, *use);
}

/// The materials with animated emission. Their emissive textures are needed even if the
/// stored emission is 0.
std::set<int> animatedEmission(const gltf::Document& document) {
    std::set<int> materials;
    for (const gltf::Animation& animation : document.animations) {
        for (const gltf::AnimationChannel& channel : animation.channels) {
            if (channel.target.path != gltf::TargetPath::Pointer) continue;
            const std::vector<std::string>& tokens = channel.target.pointer->tokens;
            if (tokens.size() < 3 || tokens.front() != "materials") continue;
            if (tokens.back().starts_with("emissive"))
                materials.insert(std::atoi(tokens[1].c_str()));
        }
    }
    return materials;
}

/// Reads the materials of one file into a scene.
class MaterialReader {
  public:
    MaterialReader(const GltfSource& source, Scene& scene)
        : source_(source),
          scene_(scene),
          textures_(source, scene),
          animatedEmission_(animatedEmission(source.document)) {}

    void readAll() {
        for (const gltf::Material& material : source_.document.materials)
            read(material);
        Surface plain;
        plain.name = names_.unique("Default");
        scene_.surfaces.push_back(plain);
    }

  private:
    void read(const gltf::Material& material) {
        Surface surface;
        surface.materialIndex = static_cast<int>(scene_.surfaces.size());
        surface.name = names_.unique(!material.name.empty()
                                         ? material.name
                                         : fmt::format("Material {}", surface.materialIndex));
        readNumbers(material, surface);
        surface.doubleSided = material.doubleSided;
        if (material.alphaMode == gltf::AlphaMode::Mask) surface.alphaMode = AlphaMode::Mask;
        if (material.alphaMode == gltf::AlphaMode::Blend) surface.alphaMode = AlphaMode::Blend;
        readTextures(material, surface);
        readToonShade(material, surface);
        readNormalMap(material, surface);
        readShadows(gltf::ownExtras(material.extras), surface);
        if (material.extras != nullptr) readShader(*material.extras, surface);
        scene_.surfaces.push_back(std::move(surface));
    }

    void readShader(const Json& extras, Surface& surface) {
        surface.shader = shaderFromExtras(
            extras, oneLine(fmt::format("{}: surface {}", source_.path, shortened(surface.name))),
            scene_.warnings);
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
                                    source_.path, shortened(surface.name), name)));
        }
    }

    /// Avatars are often marked as unlit too, for programs that do not know their shading; an
    /// avatar's shading overrides that.
    void readToonShade(const gltf::Material& material, Surface& surface) {
        surface.toon = toonShadeOf(source_.document, surface, textures_);
        surface.unlit = material.unlit && !surface.toon;
    }

    /// {"tavora": {"normalMap": false}} turns it off.
    void readNormalMap(const gltf::Material& material, Surface& surface) {
        readFlag(gltf::ownExtras(material.extras), "normalMap", surface, surface.normalMap);
        if (!surface.normalMap) return;
        surface.normalTexture =
            textures_.readOptional(material.normalTexture, "normal map", surface.name);
        if (surface.normalTexture) surface.normalTexture->isData = true;
        surface.normalScale = static_cast<float>(material.normalScale);
    }

    void readTextures(const gltf::Material& material, Surface& surface) {
        surface.baseColorTexture = textures_.read(material.baseColorTexture);
        if (surface.emissive != Imath::V3f(0) || animatedEmission_.contains(surface.materialIndex))
            surface.emissiveTexture = textures_.read(material.emissiveTexture);
        if (material.specularGlossiness)
            surface.baseColorTexture = textures_.read(material.specularGlossiness->diffuseTexture);
        if (const auto& transmission = transmissionOf(material)) {
            surface.translucencyTexture = textures_.read(transmission->texture);
            surface.translucencyComponent =
                material.diffuseTransmission ? Component::Alpha : Component::Red;
        }
    }

    const GltfSource& source_;
    Scene& scene_;
    TextureReader textures_;
    std::set<int> animatedEmission_;  ///< indices of materials
    UniqueNames names_;
};

}  // namespace

void readMaterials(const GltfSource& source, Scene& scene) {
    MaterialReader(source, scene).readAll();
}

void refreshMaterials(const GltfSource& source, Scene& scene) {
    for (Surface& surface : scene.surfaces) {
        if (surface.materialIndex < 0) continue;
        const gltf::Material& material = gltf::at(source.document.materials, surface.materialIndex);
        readNumbers(material, surface);
        updateTransform(material.specularGlossiness ? material.specularGlossiness->diffuseTexture
                                                    : material.baseColorTexture,
                        surface.baseColorTexture);
        updateTransform(material.emissiveTexture, surface.emissiveTexture);
        updateTransform(material.normalTexture.info, surface.normalTexture);
        if (const auto& transmission = transmissionOf(material))
            updateTransform(transmission->texture, surface.translucencyTexture);
    }
}

}  // namespace tavora::studio
