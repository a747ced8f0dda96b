#include "studio/edit/document.h"

#include <fmt/format.h>

#include "studio/edit/file_stamp.h"
#include "studio/edit/look_writing.h"
#include "studio/edit/opening.h"
#include "studio/edit/records.h"
#include "studio/edit/scene_saving.h"
#include "studio/edit/session_recovery.h"
#include "studio/scene/gltf/reader.h"
#include "studio/scene/gltf/settings_writer.h"
#include "studio/scene/settings/look.h"
#include "studio/scene/settings/settings.h"
#include "studio/setup/scene_report.h"
#include "studio/setup/scene_view.h"
#include "studio/setup/surface_names.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace fs = std::filesystem;

struct Document::Parts {
    Parts(const fs::path& file, const ShadingRequest& shading, Report& report);

    SurfaceShader newShader() const {
        return {records.module().server(), true, records.defaults()};
    }
    std::optional<SurfaceShader> settled(std::optional<SurfaceShader> shader);
    Step stepTo(std::size_t surface, std::optional<SurfaceShader> after, std::string what) const;
    std::string nameOf(std::size_t surface) const { return scene.surfaces[surface].name; }
    std::optional<std::size_t> surfaceNamed(const std::string& name) const;
    std::string named(const std::vector<std::size_t>& surfaces) const;
    SavePlan planSaving(bool overwrite) const;
    void takeSaved(const SavePlan& plan);
    std::vector<std::pair<std::string, std::optional<SurfaceShader>>> unsaved() const;
    SessionRecovery& recovery();

    fs::path path;
    FileStamp stamp;  ///< before the scene was read, so that no change in between is missed
    Scene scene;
    Records records;
    std::vector<std::size_t> listed;
    SurfaceShaders saved;  ///< what the file holds
    SurfaceShaders clean;  ///< with these there is nothing to save
    SurfaceShaders current;
    StepList steps;
    std::optional<SessionRecovery> kept;  ///< made on first use: who only looks takes no lock
    std::vector<std::string> warnings;
};

Document::Parts::Parts(const fs::path& file, const ShadingRequest& shading, Report& report)
    : path(file),
      stamp(stampOf(file)),
      scene(readGltf(file)),
      records(shading.plugin, scene),
      listed(listedSurfaces(scene)) {
    reportScene(scene, report);
    OpenedSurfaces opened = openSurfaces(scene, shading, records, report);
    saved = std::move(opened.saved);
    current = std::move(opened.shown);
    clean = opened.asked ? saved : current;
}

/// As a record keeps them, so that a record shown and left alone says the same.
std::optional<SurfaceShader> Document::Parts::settled(std::optional<SurfaceShader> shader) {
    if (!shader) return shader;
    settingsOf(shader->block);  // throws for a damaged block
    return SurfaceShader{records.module().server(), shader->enabled,
                         records.settled(shader->block)};
}

Step Document::Parts::stepTo(std::size_t surface, std::optional<SurfaceShader> after,
                             std::string what) const {
    return {std::move(what), {{surface, current[surface], std::move(after)}}, 0};
}

std::string Document::Parts::named(const std::vector<std::size_t>& surfaces) const {
    if (surfaces.size() == 1) return nameOf(surfaces.front());
    return fmt::format("{} surfaces", surfaces.size());
}

std::optional<std::size_t> Document::Parts::surfaceNamed(const std::string& name) const {
    for (const std::size_t i : listed) {
        if (nameOf(i) == name) return i;
    }
    return std::nullopt;
}

SessionRecovery& Document::Parts::recovery() {
    if (!kept) kept.emplace(path);
    return *kept;
}

std::vector<std::pair<std::string, std::optional<SurfaceShader>>> Document::Parts::unsaved() const {
    std::vector<std::pair<std::string, std::optional<SurfaceShader>>> changed;
    for (const std::size_t i : listed) {
        if (current[i] != saved[i]) changed.emplace_back(nameOf(i), current[i]);
    }
    return changed;
}

SavePlan Document::Parts::planSaving(bool overwrite) const {
    if (isUnchanged(path, stamp)) return planSave(scene, current, saved, clean);
    if (overwrite) return planSaveOver(scene, readGltf(path), current);
    throw Error(Fault::Scene, fmt::format("{}: was changed by another program since it was opened, "
                                          "and is left as it is; save over "
                                          "it or under another name",
                                          path.string()));
}

void Document::Parts::takeSaved(const SavePlan& plan) {
    for (const std::size_t i : plan.kept)
        saved[i] = current[i];
    clean = current;
    warnings = plan.warnings;
    steps.end();
}

Document::Document(const fs::path& scene, const ShadingRequest& shading, Report& report)
    : parts_(std::make_unique<Parts>(scene, shading, report)) {}

Document::~Document() = default;

const fs::path& Document::path() const {
    return parts_->path;
}

const Scene& Document::scene() const {
    return parts_->scene;
}

const fs::path& Document::module() const {
    return moduleCopy().file();
}

const ModuleCopy& Document::moduleCopy() const {
    return parts_->records.module();
}

const std::vector<std::size_t>& Document::surfaces() const {
    return parts_->listed;
}

const std::optional<SurfaceShader>& Document::settings(std::size_t surface) const {
    return parts_->current[surface];
}

const std::optional<SurfaceShader>& Document::cleanSettings(std::size_t surface) const {
    return parts_->clean[surface];
}

Shader& Document::record(std::size_t surface) {
    return parts_->records.at(surface, settings(surface));
}

std::optional<std::size_t> Document::surfaceOf(HostInstance instance) const {
    return parts_->records.surfaceOf(instance);
}

void Document::show(const std::vector<SettingsChange>& changes, bool after, bool inRecords) {
    for (const SettingsChange& change : changes) {
        const std::optional<SurfaceShader>& shader = after ? change.after : change.before;
        parts_->current[change.surface] = shader;
        // An open panel keeps its selected zone while nothing it shows changes.
        const bool same =
            change.before && change.after && sameBits(change.before->block, change.after->block);
        if (inRecords && !same) parts_->records.show(change.surface, shader);
    }
    for (const SettingsChange& change : changes) {
        if (settingsChanged) settingsChanged(change.surface);
    }
    if (stateChanged) stateChanged();
}

void Document::take(Step step, bool inRecords) {
    std::erase_if(step.changes,
                  [](const SettingsChange& change) { return change.before == change.after; });
    if (step.changes.empty()) return;
    parts_->steps.add(step);
    show(step.changes, true, inRecords);
}

void Document::takeRecord(std::size_t surface, Gesture gesture) {
    const bool enabled = !settings(surface) || settings(surface)->enabled;
    SurfaceShader after{moduleCopy().server(), enabled, record(surface).save()};
    Step step = parts_->stepTo(surface, std::move(after), "edit of " + parts_->nameOf(surface));
    step.gesture = gesture;
    take(std::move(step), false);
}

void Document::setEnabled(std::size_t surface, bool enabled) {
    std::optional<SurfaceShader> after = settings(surface);
    if (!after && enabled) after = parts_->newShader();
    if (after) after->enabled = enabled;
    const std::string name = parts_->nameOf(surface);
    take(parts_->stepTo(surface, std::move(after),
                        fmt::format("turning {} of {}", enabled ? "on" : "off", name)));
}

void Document::setSettings(const ShaderChanges& changes, std::string what) {
    Step step{std::move(what), {}, 0};
    for (const auto& [surface, after] : changes) {
        step.changes.push_back({surface, settings(surface), parts_->settled(after)});
    }
    take(std::move(step));
}

ShaderChanges Document::withLook(const Look& look, const std::vector<std::size_t>& surfaces) const {
    const SurfaceShader worn{
        moduleCopy().server(), true,
        withChanges(parts_->records.builtIn(), look.settings, look.name, lightNames(scene()))};
    ShaderChanges changes;
    for (const std::size_t surface : surfaces)
        changes.emplace_back(surface, worn);
    return changes;
}

void Document::wearLook(const std::string& look, const std::vector<std::size_t>& surfaces) {
    const Look worn = readLook(look);
    setSettings(withLook(worn, surfaces),
                fmt::format("look {} on {}", worn.name, parts_->named(surfaces)));
}

void Document::saveLook(std::size_t surface, const fs::path& file) const {
    const std::optional<SurfaceShader>& shader = settings(surface);
    writeLook(settingsOf(shader ? shader->block : parts_->records.defaults()), file);
}

bool Document::canUndo() const {
    return parts_->steps.canUndo();
}

bool Document::canRedo() const {
    return parts_->steps.canRedo();
}

std::string Document::undoText() const {
    return canUndo() ? parts_->steps.undoText() : std::string();
}

std::string Document::redoText() const {
    return canRedo() ? parts_->steps.redoText() : std::string();
}

void Document::undo() {
    if (canUndo()) show(parts_->steps.undo().changes, false);
}

void Document::redo() {
    if (canRedo()) show(parts_->steps.redo().changes, true);
}

bool Document::did(Gesture gesture) const {
    return parts_->steps.isLast(gesture);
}

void Document::abandon(Gesture gesture) {
    if (did(gesture)) show(parts_->steps.drop().changes, false);
}

void Document::endStep() {
    parts_->steps.end();
}

bool Document::isModified() const {
    return parts_->current != parts_->clean;
}

bool Document::changedOnDisk() const {
    try {
        return !isUnchanged(path(), parts_->stamp);
    } catch (const Error&) {
        return false;
    }
}

void Document::save(bool overwrite) {
    const SavePlan plan = parts_->planSaving(overwrite);
    if (!plan.shaders.empty()) writeGltfSettings(path(), path(), plan.shaders);
    finishSave(plan);
}

void Document::saveAs(const fs::path& file) {
    std::error_code ignored;
    if (fs::equivalent(file, path(), ignored)) return save(true);
    const SavePlan plan = parts_->planSaving(true);
    writeGltfSettings(path(), file, plan.shaders);
    if (parts_->kept) parts_->kept->removeTaken();
    parts_->kept.reset();
    parts_->path = file;
    finishSave(plan);
}

void Document::finishSave(const SavePlan& plan) {
    parts_->takeSaved(plan);
    if (parts_->kept) parts_->kept->removeTaken();
    parts_->stamp = stampOf(path());
    if (stateChanged) stateChanged();
}

const std::vector<std::string>& Document::warnings() const {
    return parts_->warnings;
}

void Document::writeRecovery() {
    SessionRecovery& recovery = parts_->recovery();
    if (!isModified()) return recovery.removeTaken();
    recovery.write({path(), parts_->stamp.size, parts_->stamp.hash, parts_->unsaved()});
}

bool Document::hasRecovery() const {
    return parts_->recovery().hasLeft();
}

void Document::recover() {
    const UnsavedWork work = parts_->recovery().takeLeft();
    parts_->warnings.clear();
    if (work.sceneHash != parts_->stamp.hash || work.sceneSize != parts_->stamp.size) {
        parts_->warnings.push_back(path().string() +
                                   ": was changed since this work was done on it");
    }
    ShaderChanges changes;
    for (const auto& [name, shader] : work.surfaces) {
        if (const auto surface = parts_->surfaceNamed(name)) {
            changes.emplace_back(*surface, shader);
        } else {
            parts_->warnings.push_back(
                fmt::format("{}: no longer has the surface \"{}\"", path().string(), name));
        }
    }
    setSettings(changes, "recovery");
    if (stateChanged) stateChanged();  // also when the scene says all of it already
}

void Document::discardRecovery() {
    parts_->recovery().discard();
}

void Document::discardOwnRecovery() {
    parts_->recovery().removeTaken();
}

}  // namespace tavora::studio
