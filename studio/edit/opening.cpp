#include "studio/edit/opening.h"

#include "studio/setup/scene_view.h"
#include "studio/setup/shading_plan.h"

namespace tavora::studio {
namespace {

/// To the bit as a record keeps them.
SurfaceShaders settled(SurfaceShaders shaders, Records& records) {
    for (std::optional<SurfaceShader>& shader : shaders) {
        if (shader) shader->block = records.settled(shader->block);
    }
    return shaders;
}

}  // namespace

OpenedSurfaces openSurfaces(const Scene& scene, const ShadingRequest& request, Records& records,
                            Report& report) {
    const ShaderClass shader = records.shaderClass();
    const std::vector<std::string> lights = lightNames(scene);
    const ShadingRequest asked = withDefaultLook(scene, request, report);
    Report silent({0, true, {}});  // what the file holds is reported once
    OpenedSurfaces opened;
    opened.saved = settled(planSurfaces(scene, {}, shader, lights, silent), records);
    opened.shown = settled(planSurfaces(scene, asked, shader, lights, report), records);
    opened.asked = !request.looks.empty() || !request.changes.empty() || storesShaders(scene);
    for (std::size_t i = 0; i < opened.shown.size(); ++i) {
        if (opened.shown[i] || !opened.saved[i]) continue;
        opened.shown[i] = opened.saved[i];
        opened.shown[i]->enabled = false;
    }
    return opened;
}

}  // namespace tavora::studio
