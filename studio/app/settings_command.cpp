#include <fmt/format.h>
#include <map>
#include <set>

#include "studio/app/commands.h"
#include "studio/files/output_target.h"
#include "studio/files/standard_streams.h"
#include "studio/scene/gltf/reader.h"
#include "studio/scene/gltf/settings_writer.h"
#include "studio/scene/settings/settings.h"
#include "studio/setup/scene_report.h"
#include "studio/setup/scene_view.h"
#include "studio/setup/shading_plan.h"
#include "studio/setup/surface_names.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

std::set<std::size_t> chosenSurfaces(const Scene& scene, const std::vector<std::string>& patterns) {
    std::set<std::size_t> chosen;
    for (const std::string& pattern : patterns) {
        for (const std::size_t i : matchingSurfaces(scene, pattern, "--surface"))
            chosen.insert(i);
    }
    if (!patterns.empty()) return chosen;
    const std::vector<std::size_t> all = listedSurfaces(scene);
    return {all.begin(), all.end()};
}

// Restricts looks that name no surface to the chosen surfaces.
ShadingRequest withChosenSurfaces(const ShadingRequest& request,
                                  const std::vector<std::string>& patterns) {
    ShadingRequest narrow = request;
    narrow.looks.clear();
    for (const LookChoice& choice : request.looks) {
        if (!choice.surfaces.empty() || patterns.empty()) {
            narrow.looks.push_back(choice);
            continue;
        }
        for (const std::string& pattern : patterns)
            narrow.looks.push_back({pattern, choice.look});
    }
    return narrow;
}

Json described(const Surface& surface, const std::optional<SurfaceShader>& shader) {
    return {{"surface", surface.name},
            {"server", shader ? Json(shader->server) : Json()},
            {"enabled", activeBlock(shader) != nullptr},
            {"settings", shader ? settingsOf(shader->block) : Json()}};
}

void print(const Scene& scene, const SurfaceShaders& shaders, const std::set<std::size_t>& chosen) {
    Json list = Json::array();
    for (const std::size_t i : chosen)
        list.push_back(described(scene.surfaces[i], shaders[i]));
    writeOut(list.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

// Whether the file can store settings of the surface: it cannot for geometry without a material.
// Then throws Error if surfaces were chosen by name, else reports a warning.
bool canStore(const Scene& scene, const Surface& surface, const SettingsRequest& request,
              Report& report) {
    if (surface.materialIndex >= 0) return true;
    const std::string problem = fmt::format(
        "{}: surface \"{}\" has no material in the file to hold settings; give it one "
        "in your modeller",
        scene.path, surface.name);
    if (!request.surfaces.empty()) throw Error(Fault::Scene, problem);
    report.warning(problem);
    return false;
}

/// The surfaces to which a look or a change applies.
std::set<std::size_t> changedSurfaces(const Scene& scene, const ShadingRequest& request) {
    std::set<std::size_t> changed;
    for (const LookChoice& choice : request.looks) {
        for (const std::size_t i : surfacesOf(scene, choice))
            changed.insert(i);
    }
    for (const SettingChange& change : request.changes) {
        for (const std::size_t i : matchingSurfaces(scene, change.surfaces, "--set"))
            changed.insert(i);
    }
    return changed;
}

void store(const Scene& scene, const SurfaceShaders& shaders, const std::set<std::size_t>& chosen,
           const SettingsRequest& request, Report& report) {
    std::map<int, SurfaceShader> stored;
    for (const std::size_t i : chosen) {
        const Surface& surface = scene.surfaces[i];
        if (shaders[i] && canStore(scene, surface, request, report))
            stored[surface.materialIndex] = *shaders[i];
    }
    if (stored.empty())
        throw Error(Fault::Usage, "settings: nothing to store; give --look or --set");
    writeGltfSettings(request.scene, request.output, stored);
    report.note(1,
                fmt::format("settings of {} surfaces stored in {}", stored.size(), request.output));
}

}  // namespace

void showOrStoreSettings(const SettingsRequest& request, Report& report) {
    if (isStream(request.output)) {
        checkStandardOutput();
    } else if (!request.output.empty()) {
        outputTarget(request.output);
    }
    const Scene scene = readGltf(request.scene, request.reading);
    reportScene(scene, report);
    std::set<std::size_t> chosen = chosenSurfaces(scene, request.surfaces);
    const bool needsModule =
        storesShaders(scene) || hasAvatars(scene) || !request.shading.looks.empty();
    const bool changes = !request.shading.changes.empty();
    const ShadingRequest shading = withChosenSurfaces(request.shading, request.surfaces);
    SurfaceShaders shaders(scene.surfaces.size());
    if (needsModule || changes) {
        shaders = planSurfaces(scene, shading, openShaderClass(shading.plugin), lightNames(scene),
                               report);
    }
    if (request.output.empty()) return print(scene, shaders, chosen);
    const std::set<std::size_t> changed = changedSurfaces(scene, shading);
    std::erase_if(chosen, [&](std::size_t i) { return !changed.contains(i); });
    store(scene, shaders, chosen, request, report);
}

}  // namespace tavora::studio
