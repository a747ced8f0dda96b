#include "studio/scene/gltf/unsupported.h"

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

/// Whether the material is an avatar's and `holds` is true for its shading.
template <class Holds>
bool isToon(const Material& material, const Holds& holds) {
    return material.toon && holds(*material.toon);
}

/// A feature of materials that is not drawn.
struct Feature {
    bool (*isUsed)(const Material&);
    const char* text;
};

constexpr Feature kFeatures[] = {
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

/// Collects the lines, and the materials that each is about.
class UnsupportedReport {
  public:
    UnsupportedReport(const GltfSource& source, Scene& scene) : source_(source), scene_(scene) {}

    void run() {
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
        reported_.insert(extension);
        return line(notDrawnText(extension));
    }

    static std::string notDrawnText(std::string_view extension) {
        return fmt::format("what {} adds is not drawn", shortened(extension));
    }

    void readMaterial(const Material& material, std::size_t index) {
        for (const Feature& feature : kFeatures) {
            if (feature.isUsed(material)) line(feature.text).insert(index);
        }
        for (const std::string_view extension : material.extensions.names) {
            if (supportOf(extension) != Support::Read) notDrawn(extension).insert(index);
        }
    }

    /// A texture whose format is not read is drawn with another image that the file has for
    /// it, or not used.
    void readTextures() {
        for (const gltf::Texture& texture : source_.document.textures) {
            if (!texture.hasImage() && texture.extensions.names.empty())
                line("textures that name no image are left out");
            for (const std::string_view extension : texture.extensions.names) {
                if (supportOf(extension) == Support::Read) continue;
                reported_.insert(extension);
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
            if (support == Support::Incomplete) {
                scene_.warnings.push_back(
                    oneLine(fmt::format("{}: {}", source_.path, notDrawnText(name))));
            } else if (support != Support::Read && reported_.count(name) == 0) {
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
    std::set<std::string_view> reported_;  // extensions
    std::vector<std::string> order_;       // of the lines
    std::map<std::string, std::set<std::size_t>> lines_;
};

}  // namespace

void reportUnsupported(const GltfSource& source, Scene& scene) {
    UnsupportedReport(source, scene).run();
}

}  // namespace tavora::studio
