#include "studio/scene/gltf/lacks.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <set>
#include <string_view>

#include "studio/scene/gltf/extensions.h"
#include "studio/util/json_members.h"
#include "studio/util/some_names.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

using gltf::Material;

/// Whether `holds` of the avatar's part of a material that has one.
template <class Holds>
bool isToon(const Material& material, const Holds& holds) {
    return material.toon && holds(*material.toon);
}

/// Something that a material may ask for.
struct Wish {
    bool (*isAsked)(const Material&);
    const char* answer;
};

constexpr Wish kWishes[] = {
    {[](const Material& m) { return m.occlusionTexture.given; },
     "occlusion textures are not drawn"},
    {[](const Material& m) { return m.metallicRoughnessTexture.given; },
     "metallic-roughness textures are not read; the roughness factor alone counts"},
    {[](const Material& m) { return m.metallicFactor.value_or(0) > 0; },
     "metals are shaded like any other surface"},
    {[](const Material& m) { return member(gltf::ownExtras(m.extras), "normalMap") == false; },
     "normal maps are turned off in the file"},
    {[](const Material& m) {
         return m.specularGlossiness && m.specularGlossiness->specularGlossinessTexture;
     },
     "specular-glossiness textures are not read; the glossiness factor alone counts"},
    {[](const Material& m) {
         return isToon(m, [](const auto& toon) { return toon.shadingShiftTexture.given; });
     },
     "textures that shift an avatar's shade are not read"},
    {[](const Material& m) {
         return isToon(m, [](const auto& toon) { return toon.matcapTexture.given; });
     },
     "matcap textures are not drawn"},
    {[](const Material& m) {
         return isToon(m, [](const auto& toon) {
             const auto& color = toon.parametricRimColorFactor;
             return *std::max_element(color.begin(), color.end()) > 0;
         });
     },
     "an avatar's rim light is not drawn"},
    {[](const Material& m) {
         return isToon(m, [](const auto& toon) { return toon.outlineWidthMode != "none"; });
     },
     "an avatar's outlines are not drawn; the shader's edge band may stand in"},
    {[](const Material& m) {
         return isToon(m, [](const auto& toon) {
             return toon.scrollXSpeed != 0 || toon.scrollYSpeed != 0 || toon.rotationSpeed != 0;
         });
     },
     "textures that move by themselves stand still"},
};

/// Lines, and by line the materials that it is about.
class Lacks {
  public:
    Lacks(const GltfSource& source, Scene& scene) : source_(source), scene_(scene) {}

    void tell() {
        const std::vector<Material>& materials = source_.document.materials;
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

    std::set<std::size_t>& notDrawn(std::string_view extension) {
        told_.insert(extension);
        return line(notDrawnText(extension));
    }

    static std::string notDrawnText(std::string_view extension) {
        return fmt::format("what {} adds is not drawn", shortened(extension));
    }

    void readMaterial(const Material& material, std::size_t index) {
        for (const Wish& wish : kWishes) {
            if (wish.isAsked(material)) line(wish.answer).insert(index);
        }
        for (const std::string_view extension : material.extensions.names) {
            if (supportOf(extension) != Support::Read) notDrawn(extension).insert(index);
        }
    }

    /// Of pictures in a format that is not read another stands in, or the texture
    /// is not used.
    void readTextures() {
        for (const gltf::Texture& texture : source_.document.textures) {
            if (!texture.hasImage() && texture.extensions.names.empty())
                line("textures that name no image are left out");
            for (const std::string_view extension : texture.extensions.names) {
                if (supportOf(extension) == Support::Read) continue;
                told_.insert(extension);
                line(
                    fmt::format("textures stored for {} are not read, others stand in where the "
                                "file has them",
                                shortened(extension)));
            }
        }
    }

    void readExtensions() {
        for (const std::string_view name : source_.document.extensionsUsed) {
            const Support support = supportOf(name);
            if (support == Support::Missed) {
                scene_.warnings.push_back(
                    oneLine(fmt::format("{}: {}", source_.path, notDrawnText(name))));
            } else if (support != Support::Read && told_.count(name) == 0) {
                notDrawn(name);
            }
        }
    }

    std::string whose(const std::set<std::size_t>& materials) const {
        if (materials.empty()) return "";
        std::vector<std::string> names;
        for (const std::size_t i : materials)
            names.push_back(shortened(scene_.surfaces[i].name));
        return fmt::format(" ({})", someOf(names));
    }

    const GltfSource& source_;
    Scene& scene_;
    std::set<std::string_view> told_;  // extensions
    std::vector<std::string> order_;
    std::map<std::string, std::set<std::size_t>> lines_;
};

}  // namespace

void tellLacks(const GltfSource& source, Scene& scene) {
    Lacks(source, scene).tell();
}

}  // namespace tavora::studio
