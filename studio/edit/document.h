#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "studio/edit/step_list.h"
#include "studio/link/module_copy.h"
#include "studio/link/shader.h"
#include "studio/scene/scene.h"
#include "studio/scene/surface_shader.h"
#include "studio/setup/report.h"
#include "studio/setup/shading_request.h"

namespace tavora::studio {

struct Look;
struct SavePlan;

/// What goes on surfaces; none takes the shader off.
using ShaderChanges = std::vector<std::pair<std::size_t, std::optional<SurfaceShader>>>;

/// A scene that is being edited: the settings of its surfaces, what was done to
/// them and can be undone, what is saved and what is not. Holds the records that
/// panels edit, on a module copy of its own. GUI thread. Knows no window.
class Document {
  public:
    /// Reads the scene and settles what is on its surfaces, as `tavora render`
    /// does: stored settings, over them the request's looks and changes, and
    /// two-tone on all when nothing is stored and nothing asked.
    /// Throws Error, Fault::Module, Fault::Usage.
    Document(const std::filesystem::path& scene, const ShadingRequest& shading, Report& report);
    ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    const std::filesystem::path& path() const;  ///< where save() writes
    const Scene& scene() const;
    const std::filesystem::path& module() const;
    const ModuleCopy& moduleCopy() const;

    /// Indices into Scene::surfaces of those that the user sees, in order.
    const std::vector<std::size_t>& surfaces() const;
    /// The shader on a surface; none where it never had one.
    const std::optional<SurfaceShader>& settings(std::size_t surface) const;
    /// With these there is nothing to save: what the file holds, or what a
    /// surface without any wears when nobody asked for anything.
    const std::optional<SurfaceShader>& cleanSettings(std::size_t surface) const;

    /// The record that panels edit, made on first use and kept in step with
    /// settings() by undo and redo. Stays at its place while the document lives.
    Shader& record(std::size_t surface);

    /// Takes over what a panel wrote into the record. Nothing when it says what
    /// settings() says. A surface without the shader wears it from now on.
    void takeRecord(std::size_t surface, Gesture gesture);
    /// The surface whose record this is; none for others.
    std::optional<std::size_t> surfaceOf(HostInstance instance) const;

    /// One step. A surface that never had the shader wears a new one's settings.
    void setEnabled(std::size_t surface, bool enabled);
    /// One step for all, named `what` in menus. Also loads the records. Throws
    /// Fault::Scene for a damaged block, and then changes nothing.
    void setSettings(const ShaderChanges& changes, std::string what);
    /// Puts a look (a name or file) on the surfaces and turns them on: one step.
    /// As on the command line it lies over the built-in settings, whatever the
    /// surfaces wore and the user stored. Throws Error.
    void wearLook(const std::string& look, const std::vector<std::size_t>& surfaces);
    /// What wearLook() would give the surfaces.
    ShaderChanges withLook(const Look& look, const std::vector<std::size_t>& surfaces) const;
    /// Writes the surface's settings as a look. Throws Error, Fault::Output.
    void saveLook(std::size_t surface, const std::filesystem::path& file) const;

    bool canUndo() const;
    bool canRedo() const;
    std::string undoText() const;  ///< "edit of Body", for menus; empty when there is none
    std::string redoText() const;
    void undo();
    void redo();
    /// Whether the last step is what this gesture did.
    bool did(Gesture gesture) const;
    /// Takes the gesture's step back for good; nothing when there is none.
    void abandon(Gesture gesture);
    /// Changes after this are a step of their own, whatever their gesture.
    void endStep();

    /// Whether there is work to save: settings differ from what the file holds.
    /// A look that merely stands in for a file without any is no work; it is
    /// saved together with the first change.
    bool isModified() const;
    /// Whether another program changed the file since it was read or saved.
    /// False for one that is gone: save() says so.
    bool changedOnDisk() const;
    /// Writes into the scene's file, whole or not at all; the changes stay
    /// unsaved when it throws Fault::Output or Fault::Scene. Notices a file that
    /// changed on disk since it was read: throws Fault::Scene unless `overwrite`,
    /// with which the settings go into the changed file, by the names of its
    /// materials. See warnings().
    void save(bool overwrite = false);
    /// Saves to another file of the same suffix and goes on with that. The file
    /// that was open stays as it is.
    void saveAs(const std::filesystem::path& file);
    /// What the last save() or recover() could not do, a line for each: surfaces
    /// that the file has no material for, whose settings it cannot hold.
    const std::vector<std::string>& warnings() const;

    /// Writes unsaved work where a later start finds it; removes the recovery
    /// file when all is saved. Cheap when nothing changed since the last call.
    /// The file outlives the document unless it is saved or discarded.
    /// Throws Error, Fault::Output.
    void writeRecovery();
    /// Unsaved work of a session on this scene that did not end well; what open
    /// windows of any program keep does not count.
    bool hasRecovery() const;
    /// Takes it over as one step; throws Fault::Scene when it is damaged, and keeps
    /// the damaged file under another name. Surfaces that the scene no longer has
    /// are told in warnings().
    void recover();
    /// Removes it, and what this session wrote: for unsaved work nobody wants.
    void discardRecovery();
    /// Removes what this session wrote or took over; work of an earlier session
    /// that was not taken over is offered again.
    void discardOwnRecovery();

    /// Heard after every change of settings(), by surface.
    std::function<void(std::size_t surface)> settingsChanged;
    /// Heard when what can be undone, or whether it is saved, may have changed.
    std::function<void()> stateChanged;

  private:
    struct Parts;
    void take(Step step, bool inRecords = true);
    void show(const std::vector<SettingsChange>& changes, bool after, bool inRecords = true);
    void finishSave(const SavePlan& plan);

    std::unique_ptr<Parts> parts_;
};

}  // namespace tavora::studio
