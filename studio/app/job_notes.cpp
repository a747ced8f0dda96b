#include "studio/app/job_notes.h"

#include <fmt/format.h>
#include <variant>

#include "studio/link/module_file.h"
#include "studio/render/image/picture_tiles.h"
#include "studio/services/directory_info.h"
#include "studio/services/registry.h"
#include "studio/util/digest.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

/// A digest of everything that a picture depends on. Names and counts keep the parts apart.
class JobDigest {
  public:
    template <class... Values>
    void add(const char* name, const Values&... values) {
        digest_.add(name);
        (digest_.add(fmt::format("{}", values)), ...);
    }

    void add(const char* name, const std::vector<std::string>& texts) {
        add(name, texts.size());
        for (const std::string& text : texts)
            digest_.add(text);
    }

    void add(const char* name, const std::vector<LightSize>& sizes) {
        add(name, sizes.size());
        for (const LightSize& size : sizes)
            add("size", size.lights, size.size);
    }

    void add(const char* name, const std::optional<Imath::V3d>& color) {
        add(name, color.has_value());
        if (color) add("color", color->x, color->y, color->z);
    }

    void add(const SurfaceShaders& shaders) {
        for (const auto& shader : shaders) {
            const StateBlock* block = activeBlock(shader);
            add("surface", block != nullptr);
            for (std::size_t i = 0; block != nullptr && i < block->size(); ++i)
                std::visit([&](const auto& value) { add("item", value); }, (*block)[i]);
        }
    }

    std::string text() const { return digest_.text(); }

  private:
    Digest digest_;
};

void addOptions(const RenderRequest& request, JobDigest& digest) {
    digest.add("samples", request.samples, request.maxSamples, static_cast<int>(request.filter));
    digest.add("camera", request.camera);
    digest.add("background", request.background);
    const AnimationRequest& animation = request.animation;
    digest.add("animations", animation.names);
    digest.add("time", animation.isGiven() || !request.frames.empty(),
               animation.seconds.value_or(0));
    digest.add("frames", animation.fps, request.hold, request.shutter);
    const LightingOptions& lighting = request.lighting;
    digest.add("ambient", lighting.ambient);
    digest.add("exposure", lighting.exposure.value_or(-1), lighting.falloff);
    digest.add("radii", lighting.radii);
    digest.add("angles", lighting.angles);
    digest.add("lights without shadows", lighting.withoutShadows);
    digest.add("without self-shadow", request.withoutSelfShadow);
    digest.add("without cast shadows", request.withoutCastShadows);
    digest.add("without received shadows", request.withoutReceivedShadows);
    digest.add("without normal map", request.withoutNormalMap);
}

/// Adds the module's own description, since its bytes differ between the machines that build it.
void addModule(const std::filesystem::path& file, JobDigest& digest) {
    const HiddenSettingsFolder hidden;  // the user's defaults do not matter
    const ModuleSummary module = summarize(file, findService);
    digest.add("module", module.descriptorVersion);
    for (const ModuleSummary::Class& server : module.classes)
        digest.add("class", server.className, server.serverName, server.version,
                   server.description);
}

}  // namespace

PictureNotes notesOf(const RenderRequest& request, const PictureArea& area,
                     const PictureFormat& format, const FilmScene& scene, const Shading& shading) {
    JobDigest digest;
    const PixelBox& box = area.undivided;
    digest.add("picture", area.width, area.height);
    digest.add("window", box.left, box.top, box.right, box.bottom);
    digest.add("format", static_cast<int>(format.kind), static_cast<int>(format.depth),
               format.alpha);
    addOptions(request, digest);
    digest.add(shading.surfaces);
    if (!shading.module.empty()) addModule(shading.module, digest);
    const std::string samples = request.maxSamples > 0
                                    ? fmt::format("{}..{}", request.samples, request.maxSamples)
                                    : std::to_string(request.samples);
    PictureNotes notes{{"Software", "tavora " TAVORA_VERSION},
                       {"tavora:scene", scene.scene().digest},
                       {"tavora:job", digest.text()},
                       {"tavora:samples", samples},
                       {"tavora:camera", oneLine(scene.camera().name)}};
    if (request.tile) noteTile({*request.tile, area.width, area.height, box}, notes);
    return notes;
}

PictureNotes notesOfFrame(const PictureNotes& notes, int frame) {
    PictureNotes result = notes;
    result["tavora:frame"] = std::to_string(frame);
    return result;
}

}  // namespace tavora::studio
