#include "studio/edit/undo_steps.h"

#include <fmt/format.h>

#include "studio/scene/settings/look.h"
#include "studio/scene/settings/settings.h"
#include "studio/setup/scene_view.h"
#include "studio/setup/shader_class.h"

namespace tavora::studio {
namespace {

const std::string& nameOf(const SceneSettings& settings, std::size_t surface) {
    return settings.scene().surfaces[surface].name;
}

}  // namespace

UndoStep recordStep(SceneSettings& settings, std::size_t surface, Gesture gesture) {
    const std::optional<SurfaceShader>& before = settings.at(surface);
    SurfaceShader after{settings.module().server(), !before || before->enabled,
                        settings.record(surface).save()};
    return {"edit of " + nameOf(settings, surface), {{surface, before, std::move(after)}}, gesture};
}

UndoStep enableStep(const SceneSettings& settings, std::size_t surface, bool enabled) {
    const std::optional<SurfaceShader>& before = settings.at(surface);
    std::optional<SurfaceShader> after = before;
    if (!after && enabled) after = settings.newShader();
    if (after) after->enabled = enabled;
    return {fmt::format("turning {} of {}", enabled ? "on" : "off", nameOf(settings, surface)),
            {{surface, before, std::move(after)}}};
}

UndoStep settingsStep(SceneSettings& settings, const ShaderChanges& changes, std::string what) {
    UndoStep step{std::move(what), {}, 0};
    for (const auto& [surface, after] : changes)
        step.changes.push_back({surface, settings.at(surface), settings.normalized(after)});
    return step;
}

UndoStep lookStep(SceneSettings& settings, const std::string& look,
                  const std::vector<std::size_t>& surfaces) {
    const Look read = readLook(look);
    const std::string where = surfaces.size() == 1 ? nameOf(settings, surfaces.front())
                                                   : fmt::format("{} surfaces", surfaces.size());
    return settingsStep(settings, withLook(settings, read, surfaces),
                        fmt::format("look {} on {}", read.name, where));
}

ShaderChanges withLook(const SceneSettings& settings, const Look& look,
                       const std::vector<std::size_t>& surfaces) {
    const SurfaceShader shader{settings.module().server(), true,
                               withChanges(builtInSettings(settings.module()), look.settings,
                                           look.name, lightNames(settings.scene()))};
    ShaderChanges changes;
    for (const std::size_t surface : surfaces)
        changes.emplace_back(surface, shader);
    return changes;
}

}  // namespace tavora::studio
