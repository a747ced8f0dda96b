#include "studio/edit/scene_settings.h"

#include "studio/link/module_file.h"
#include "studio/scene/settings/settings.h"
#include "studio/services/directory_info.h"
#include "studio/services/registry.h"
#include "studio/setup/scene_report.h"
#include "studio/setup/scene_view.h"
#include "studio/setup/shader_class.h"
#include "studio/setup/shading_plan.h"
#include "studio/setup/surface_names.h"

namespace tavora::studio {
namespace {

HostSurfaceId surfaceId(const Surface& surface) {
    return reinterpret_cast<HostSurfaceId>(const_cast<Surface*>(&surface));
}

/// A new instance whose settings are loaded next, so that it need not read the user's defaults.
Shader newInstance(const ModuleCopy& module, HostSurfaceId surface) {
    const HiddenSettingsFolder hidden;
    return Shader(module, surface);
}

}  // namespace

SceneSettings::SceneSettings(const Scene& scene, const ShadingRequest& request, Report& report)
    : scene_(scene),
      module_(findModule(request.plugin), findServiceOrWindow),
      scratch_(newInstance(module_, nullptr)),
      records_(scene_.surfaces.size()),
      listed_(listedSurfaces(scene_)) {
    reportScene(scene_, report);
    const ShaderClass shader{module_.file(), module_.server(), builtInSettings(module_)};
    const std::vector<std::string> lights = lightNames(scene_);
    const ShadingRequest shading = withDefaultLook(scene_, request, report);
    Report silent({0, true, {}});  // so that warnings about the file are not repeated
    saved_ = planSurfaces(scene_, {}, shader, lights, silent);
    now_ = planSurfaces(scene_, shading, shader, lights, report);
    for (std::size_t i = 0; i < now_.size(); ++i) {
        saved_[i] = normalized(std::move(saved_[i]));
        now_[i] = normalized(std::move(now_[i]));
        if (now_[i] || !saved_[i]) continue;
        now_[i] = saved_[i];
        now_[i]->enabled = false;
    }
    const bool hasDefaultLook =
        request.looks.empty() && request.changes.empty() && !storesShaders(scene_);
    clean_ = hasDefaultLook ? now_ : saved_;
}

bool SceneSettings::isUnsaved(std::size_t surface) const {
    const bool canBeSaved = scene_.surfaces[surface].materialIndex >= 0;
    return now_[surface] != saved_[surface] && (canBeSaved || now_[surface] != clean_[surface]);
}

SurfaceShader SceneSettings::newShader() const {
    return {module_.server(), true, newShaderSettings(module_)};
}

std::optional<SurfaceShader> SceneSettings::normalized(std::optional<SurfaceShader> shader) {
    if (!shader) return shader;
    scratch_.load(blockOf(settingsOf(shader->block)));
    return SurfaceShader{module_.server(), shader->enabled, scratch_.save()};
}

void SceneSettings::set(const ShaderChanges& changes) {
    for (const auto& [surface, shader] : changes) {
        now_[surface] = shader;
        if (records_[surface] == nullptr) continue;
        // An edit in a panel is already in its instance: loading it would reset the selected
        // zone.
        const StateBlock block = shader ? shader->block : newShader().block;
        if (!sameBits(records_[surface]->save(), block)) records_[surface]->load(block);
    }
    for (const auto& [surface, shader] : changes) {
        if (surfaceChanged) surfaceChanged(surface);
    }
    if (stateChanged) stateChanged();
}

void SceneSettings::markSaved(const std::vector<std::size_t>& surfaces) {
    for (const std::size_t i : surfaces)
        saved_[i] = now_[i];
    clean_ = now_;
    if (stateChanged) stateChanged();
}

Shader& SceneSettings::record(std::size_t surface) {
    std::unique_ptr<Shader>& record = records_[surface];
    if (record == nullptr) {
        auto made =
            std::make_unique<Shader>(newInstance(module_, surfaceId(scene_.surfaces[surface])));
        made->load(at(surface) ? at(surface)->block : newShader().block);
        record = std::move(made);
    }
    return *record;
}

std::optional<std::size_t> SceneSettings::surfaceOf(HostInstance instance) const {
    for (std::size_t i = 0; i < records_.size(); ++i) {
        if (records_[i] != nullptr && records_[i]->instance() == instance) return i;
    }
    return std::nullopt;
}

}  // namespace tavora::studio
