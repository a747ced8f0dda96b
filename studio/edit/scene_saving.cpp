#include "studio/edit/scene_saving.h"

#include <algorithm>
#include <fmt/format.h>

namespace tavora::studio {
namespace {

/// The material of a surface in the file as it stands now; -1: none.
int materialNamed(const Scene& now, const Surface& surface) {
    if (surface.materialIndex < 0) return -1;
    const auto found = std::find_if(now.surfaces.begin(), now.surfaces.end(),
                                    [&](const Surface& one) { return one.name == surface.name; });
    return found == now.surfaces.end() ? -1 : found->materialIndex;
}

SurfaceShader turnedOff(SurfaceShader shader) {
    shader.enabled = false;
    return shader;
}

std::string warningOf(const Scene& scene, const Surface& surface, const char* why) {
    return fmt::format("{}: surface \"{}\" {}, so its settings are not saved", scene.path,
                       surface.name, why);
}

}  // namespace

SavePlan planSave(const Scene& scene, const SurfaceShaders& shown, const SurfaceShaders& saved,
                  const SurfaceShaders& opened) {
    SavePlan plan;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const Surface& surface = scene.surfaces[i];
        if (shown[i] == saved[i]) continue;
        if (surface.materialIndex >= 0) {
            plan.shaders[surface.materialIndex] = shown[i] ? *shown[i] : turnedOff(*saved[i]);
            plan.kept.push_back(i);
        } else if (shown[i] != opened[i]) {
            plan.warnings.push_back(warningOf(
                scene, surface, "has no material in the file; give it one in your modeller"));
        }
    }
    return plan;
}

SavePlan planSaveOver(const Scene& scene, const Scene& now, const SurfaceShaders& shown) {
    SavePlan plan;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const int material = materialNamed(now, scene.surfaces[i]);
        if (!shown[i]) continue;
        if (material >= 0) {
            plan.shaders[material] = *shown[i];
            plan.kept.push_back(i);
        } else {
            plan.warnings.push_back(
                warningOf(scene, scene.surfaces[i], "has no material in the changed file"));
        }
    }
    return plan;
}

}  // namespace tavora::studio
