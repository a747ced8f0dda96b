#include "studio/scene/gltf_materials.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <map>

#include "studio/scene/gltf_accessor.h"
#include "studio/scene/image_decoder.h"
#include "studio/scene/scene_error.h"
#include "studio/scene/shader_extras.h"
#include "studio/scene/unique_names.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kLargestFloat = std::numeric_limits<float>::max();
constexpr std::size_t kLastUvSet = 3;

const Json& member(const Json& object, const char* key) {
    static const Json none;
    if (!object.is_object()) return none;
    const auto found = object.find(key);
    return found == object.end() ? none : *found;
}

double numberOr(const Json& value, double otherwise) {
    if (!value.is_number()) return otherwise;
    const double number = value.get<double>();
    return std::abs(number) <= kLargestFloat ? number : otherwise;
}

/// A whole number from 0 to `most`; -1 for anything else.
int indexOf(const Json& value, std::size_t most) {
    return value.is_number_unsigned() && value.get<std::uint64_t>() <= most ? value.get<int>() : -1;
}

double componentOr(const Json& list, std::size_t i, double otherwise) {
    return list.is_array() && i < list.size() ? numberOr(list[i], otherwise) : otherwise;
}

/// Reads the materials of one file into a scene.
class MaterialReader {
  public:
    MaterialReader(const GltfSource& source, Scene& scene) : source_(source), scene_(scene) {}

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

    void readBase(const Json& material, Surface& surface) {
        const Json& pbr = member(material, "pbrMetallicRoughness");
        const Json& factor = member(pbr, "baseColorFactor");
        for (std::size_t i = 0; i < 4; ++i) {
            surface.baseColor[static_cast<int>(i)] =
                static_cast<float>(componentOr(factor, i, 1.0));
        }
        surface.metallic = static_cast<float>(numberOr(member(pbr, "metallicFactor"), 1.0));
        surface.roughness = static_cast<float>(numberOr(member(pbr, "roughnessFactor"), 1.0));
        surface.baseColorTexture = texture(member(pbr, "baseColorTexture"));
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
            surface.emissiveTexture = texture(member(material, "emissiveTexture"));
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
            surface.translucencyTexture = texture(member(through, "transmissionTexture"));
            surface.translucencyComponent = Component::Red;
        }
        const Json& diffuse = member(extensions, "KHR_materials_diffuse_transmission");
        if (diffuse.is_object()) {
            surface.translucencyFactor =
                static_cast<float>(numberOr(member(diffuse, "diffuseTransmissionFactor"), 0.0));
            surface.translucencyTexture = texture(member(diffuse, "diffuseTransmissionTexture"));
            surface.translucencyComponent = Component::Alpha;
        }
    }

    void readGlossy(const Json& glossy, Surface& surface) {
        const Json& factor = member(glossy, "diffuseFactor");
        for (std::size_t i = 0; i < 4; ++i) {
            surface.baseColor[static_cast<int>(i)] =
                static_cast<float>(componentOr(factor, i, 1.0));
        }
        surface.baseColorTexture = texture(member(glossy, "diffuseTexture"));
        surface.metallic = 0;
        surface.roughness =
            static_cast<float>(1.0 - numberOr(member(glossy, "glossinessFactor"), 1.0));
    }

    std::optional<TextureUse> texture(const Json& info) {
        if (!info.is_object()) return std::nullopt;
        TextureUse use;
        const int index = indexOf(member(info, "index"), source_.model.textures.size());
        const tinygltf::Texture& texture =
            element(source_, source_.model.textures, index, "texture");
        use.image = imageOf(texture, index);
        use.uvSet = uvSetOf(info, index);
        readTransform(member(member(info, "extensions"), "KHR_texture_transform"), use);
        if (texture.sampler >= 0) readSampler(texture.sampler, use);
        return use;
    }

    int uvSetOf(const Json& info, int texture) const {
        const Json& moved =
            member(member(member(info, "extensions"), "KHR_texture_transform"), "texCoord");
        const Json& set = moved.is_null() ? member(info, "texCoord") : moved;
        if (set.is_null()) return 0;
        const int index = indexOf(set, kLastUvSet);
        if (index < 0) {
            source_.fail(fmt::format("texture {} uses the UV set {}: only 0 to {} can be read",
                                     texture, set.dump().substr(0, 40), kLastUvSet));
        }
        return index;
    }

    static void readTransform(const Json& transform, TextureUse& use) {
        if (!transform.is_object()) return;
        const Json& offset = member(transform, "offset");
        const Json& scale = member(transform, "scale");
        use.offset = {static_cast<float>(componentOr(offset, 0, 0)),
                      static_cast<float>(componentOr(offset, 1, 0))};
        use.scale = {static_cast<float>(componentOr(scale, 0, 1)),
                     static_cast<float>(componentOr(scale, 1, 1))};
        use.rotation = static_cast<float>(numberOr(member(transform, "rotation"), 0.0));
    }

    void readSampler(int index, TextureUse& use) {
        const tinygltf::Sampler& sampler =
            element(source_, source_.model.samplers, index, "sampler");
        const auto wrap = [](int mode) {
            if (mode == TINYGLTF_TEXTURE_WRAP_CLAMP_TO_EDGE) return Wrap::ClampToEdge;
            return mode == TINYGLTF_TEXTURE_WRAP_MIRRORED_REPEAT ? Wrap::MirroredRepeat
                                                                 : Wrap::Repeat;
        };
        use.wrapS = wrap(sampler.wrapS);
        use.wrapT = wrap(sampler.wrapT);
        if (sampler.magFilter == TINYGLTF_TEXTURE_FILTER_NEAREST) use.magnify = Filter::Nearest;
        use.mipmaps = sampler.minFilter != TINYGLTF_TEXTURE_FILTER_NEAREST &&
                      sampler.minFilter != TINYGLTF_TEXTURE_FILTER_LINEAR;
        const bool nearest = sampler.minFilter == TINYGLTF_TEXTURE_FILTER_NEAREST ||
                             sampler.minFilter == TINYGLTF_TEXTURE_FILTER_NEAREST_MIPMAP_NEAREST ||
                             sampler.minFilter == TINYGLTF_TEXTURE_FILTER_NEAREST_MIPMAP_LINEAR;
        if (nearest) use.minify = Filter::Nearest;
    }

    /// The scene's image for a texture, decoded at its first use.
    int imageOf(const tinygltf::Texture& texture, int textureIndex) {
        int index = texture.source;
        const auto webp = texture.extensions.find("EXT_texture_webp");
        if (webp != texture.extensions.end() && webp->second.Has("source")) {
            index = webp->second.Get("source").GetNumberAsInt();
        }
        if (index < 0)
            source_.fail(
                fmt::format("texture {} names no image: export the file again", textureIndex));
        const auto known = images_.find(index);
        if (known != images_.end()) return known->second;
        const int at = static_cast<int>(scene_.images.size());
        scene_.images.push_back(decode(index));
        images_[index] = at;
        return at;
    }

    Image decode(int index) {
        const SourceImage& image = element(source_, source_.images, index, "image");
        if (!image.problem.empty()) {
            source_.fail(fmt::format("the texture \"{}\" {}", image.name, image.problem));
        }
        try {
            return decodeImage(image.bytes, image.name);
        } catch (const SceneError& error) {
            source_.fail(
                fmt::format("the texture \"{}\" {}: export it again", image.name, error.what()));
        }
    }

    const GltfSource& source_;
    Scene& scene_;
    UniqueNames names_;
    std::map<int, int> images_;  // index in the file to index in the scene
};

}  // namespace

void readMaterials(const GltfSource& source, Scene& scene) {
    MaterialReader(source, scene).readAll();
}

}  // namespace tavora::studio
