#include "studio/edit/opening.h"

#include "studio/setup/scene_view.h"
#include "studio/setup/shading_plan.h"

namespace tavora::studio {
namespace {

std::vector<SurfaceSettings> settingsOf(const std::vector<PlannedSurface>& planned,
                                        Records& records) {
    std::vector<SurfaceSettings> all;
    for (const PlannedSurface& one : planned) {
        SurfaceSettings& settings = all.emplace_back();
        if (!one.settings) continue;
        settings.enabled = one.enabled;
        settings.block = records.settled(blockOf(*one.settings));
    }
    return all;
}

}  // namespace

OpenedSurfaces openSurfaces(const Scene& scene, const ShadingRequest& request, Records& records,
                            Report& report) {
    const ShaderClass shader = records.shaderClass();
    const std::vector<std::string> lights = lightNames(scene);
    const ShadingRequest asked = withDefaultLook(scene, request, report);
    Report silent({0, true, {}});  // what the file holds is reported once
    OpenedSurfaces opened;
    opened.saved = settingsOf(planSurfaces(scene, {}, shader, lights, silent), records);
    opened.shown = settingsOf(planSurfaces(scene, asked, shader, lights, report), records);
    opened.asked = !request.looks.empty() || !request.changes.empty() || storesShaders(scene);
    for (std::size_t i = 0; i < opened.shown.size(); ++i) {
        if (!opened.shown[i].block) opened.shown[i].block = opened.saved[i].block;
    }
    return opened;
}

}  // namespace tavora::studio
