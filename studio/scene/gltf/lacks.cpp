#include "studio/scene/gltf/lacks.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <set>

#include "studio/scene/gltf/extensions.h"
#include "studio/util/json_members.h"
#include "studio/util/some_names.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

bool isGiven(const Json& value) {
    return value.is_object();
}

bool isPositive(const Json& value) {
    return numberOr(value, 0) > 0;
}

bool isNotZero(const Json& value) {
    return numberOr(value, 0) != 0;
}

bool isColored(const Json& value) {
    return value.is_array() && std::any_of(value.begin(), value.end(), isPositive);
}

bool isDrawn(const Json& value) {
    return value.is_string() && value != "none";
}

bool isFalse(const Json& value) {
    return value == false;
}

/// Something that a material may ask for.
struct Wish {
    const char* place;  ///< in the material
    bool (*isAsked)(const Json&);
    const char* answer;
};

constexpr Wish kWishes[] = {
    {"/occlusionTexture", isGiven, "occlusion textures are not drawn"},
    {"/pbrMetallicRoughness/metallicRoughnessTexture", isGiven,
     "metallic-roughness textures are not read; the roughness factor alone counts"},
    {"/pbrMetallicRoughness/metallicFactor", isPositive,
     "metals are shaded like any other surface"},
    {"/extras/tavora/normalMap", isFalse, "normal maps are turned off in the file"},
    {"/extensions/KHR_materials_pbrSpecularGlossiness/specularGlossinessTexture", isGiven,
     "specular-glossiness textures are not read; the glossiness factor alone counts"},
    {"/extensions/VRMC_materials_mtoon/shadingShiftTexture", isGiven,
     "textures that shift an avatar's shade are not read"},
    {"/extensions/VRMC_materials_mtoon/matcapTexture", isGiven, "matcap textures are not drawn"},
    {"/extensions/VRMC_materials_mtoon/parametricRimColorFactor", isColored,
     "an avatar's rim light is not drawn"},
    {"/extensions/VRMC_materials_mtoon/outlineWidthMode", isDrawn,
     "an avatar's outlines are not drawn; the shader's edge band may stand in"},
    {"/extensions/VRMC_materials_mtoon/uvAnimationScrollXSpeedFactor", isNotZero,
     "textures that move by themselves stand still"},
    {"/extensions/VRMC_materials_mtoon/uvAnimationScrollYSpeedFactor", isNotZero,
     "textures that move by themselves stand still"},
    {"/extensions/VRMC_materials_mtoon/uvAnimationRotationSpeedFactor", isNotZero,
     "textures that move by themselves stand still"},
};

/// Lines, and by line the materials that it is about.
class Lacks {
  public:
    Lacks(const GltfSource& source, Scene& scene) : source_(source), scene_(scene) {}

    void tell() {
        const Json& materials = member(source_.document, "materials");
        for (std::size_t i = 0; i < materials.size(); ++i)
            readMaterial(materials[i], i);
        readTextures();
        readExtensions();
        for (const std::string& line : order_)
            scene_.notes.push_back(
                oneLine(fmt::format("{}: {}{}", source_.path, line, whose(lines_[line]))));
    }

  private:
    std::set<std::size_t>& line(const std::string& text) {
        const auto [found, isNew] = lines_.try_emplace(text);
        if (isNew) order_.push_back(text);
        return found->second;
    }

    static std::string notDrawn(const std::string& extension) {
        return fmt::format("what {} adds is not drawn", extension);
    }

    void readMaterial(const Json& material, std::size_t index) {
        for (const Wish& wish : kWishes) {
            const Json::json_pointer place(wish.place);
            if (material.contains(place) && wish.isAsked(material.at(place)))
                line(wish.answer).insert(index);
        }
        const Json& extensions = member(material, "extensions");
        if (!extensions.is_object()) return;
        for (const auto& extension : extensions.items()) {
            if (supportOf(extension.key()) != Support::Read)
                line(notDrawn(extension.key())).insert(index);
        }
    }

    /// Of pictures in a format that is not read another stands in, or the texture
    /// is not used.
    void readTextures() {
        for (const tinygltf::Texture& texture : source_.model.textures) {
            for (const auto& extension : texture.extensions) {
                if (supportOf(extension.first) == Support::Read) continue;
                line(
                    fmt::format("textures stored for {} are not read, others stand in where the "
                                "file has them",
                                extension.first));
            }
        }
    }

    void readExtensions() {
        const Json& used = member(source_.document, "extensionsUsed");
        if (!used.is_array()) return;
        for (const Json& name : used) {
            const auto text = name.get<std::string>();
            const Support support = supportOf(text);
            if (support == Support::Missed) {
                scene_.warnings.push_back(
                    oneLine(fmt::format("{}: {}", source_.path, notDrawn(text))));
            } else if (support != Support::Read && !isTold(text)) {
                line(notDrawn(text));
            }
        }
    }

    bool isTold(const std::string& extension) const {
        return std::any_of(order_.begin(), order_.end(), [&](const std::string& text) {
            return text.find(extension) != std::string::npos;
        });
    }

    std::string whose(const std::set<std::size_t>& materials) const {
        if (materials.empty()) return "";
        std::vector<std::string> names;
        for (const std::size_t i : materials)
            names.push_back(scene_.surfaces[i].name);
        return fmt::format(" ({})", someOf(names));
    }

    const GltfSource& source_;
    Scene& scene_;
    std::vector<std::string> order_;
    std::map<std::string, std::set<std::size_t>> lines_;
};

}  // namespace

void tellLacks(const GltfSource& source, Scene& scene) {
    Lacks(source, scene).tell();
}

}  // namespace tavora::studio
