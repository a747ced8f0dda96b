#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "studio/link/module_copy.h"
#include "studio/link/shader.h"
#include "studio/scene/scene.h"
#include "studio/scene/surface_shader.h"
#include "studio/setup/report.h"
#include "studio/setup/shading_request.h"

namespace tavora::studio {

/// Shaders by index into Scene::surfaces; none where there never was one.
using ShaderChanges = std::vector<std::pair<std::size_t, std::optional<SurfaceShader>>>;

/// A scene and what is on its surfaces: now, in its file, and in the records that
/// panels edit, which live on a module copy of their own. GUI thread.
class SceneSettings {
  public:
    /// Settles what is on the surfaces as `tavora render` does: stored settings, over
    /// them the request's looks and changes, and the default look on all when nothing
    /// is stored and nothing asked. A shader that the request leaves out is turned
    /// off. `scene` must outlive it. Throws what planSurfaces() throws, and Fault::Module.
    SceneSettings(const Scene& scene, const ShadingRequest& request, Report& report);
    SceneSettings(const SceneSettings&) = delete;
    SceneSettings& operator=(const SceneSettings&) = delete;

    const Scene& scene() const { return scene_; }
    const ModuleCopy& module() const { return module_; }
    /// Indices into Scene::surfaces of those that the user sees, in order.
    const std::vector<std::size_t>& surfaces() const { return listed_; }

    const std::optional<SurfaceShader>& at(std::size_t surface) const { return now_[surface]; }
    /// What the file holds.
    const std::optional<SurfaceShader>& saved(std::size_t surface) const { return saved_[surface]; }
    /// With these there is nothing to save: what the file holds, or a look that
    /// stands in for a file without any while nothing was changed. It is saved
    /// together with the first change.
    const std::optional<SurfaceShader>& clean(std::size_t surface) const { return clean_[surface]; }
    bool isModified() const { return now_ != clean_; }
    /// Whether the file holds something else than is on the surface. A look that stands
    /// in on a surface without material does not count: no file can hold it.
    bool isUnsaved(std::size_t surface) const;

    /// Puts settings on the surfaces and into their records. For the undo stack:
    /// what it does not know cannot be undone.
    void set(const ShaderChanges& changes);
    /// The file now holds these surfaces as they are, and the others as well as it can.
    void markSaved(const std::vector<std::size_t>& surfaces);

    /// The record that a panel edits, made on first use. Whoever writes into it
    /// pushes recordStep(). Stays at its place.
    Shader& record(std::size_t surface);
    /// The surface whose record this is; none for others.
    std::optional<std::size_t> surfaceOf(HostInstance instance) const;

    /// What a surface gets that never had the shader: the settings that the user stored
    /// as default, as of now (a panel may store others).
    SurfaceShader newShader() const;
    /// The shader as a record keeps it, to the bit, so that a record shown and left alone
    /// says the same. Throws Fault::Scene for a damaged block.
    std::optional<SurfaceShader> settled(std::optional<SurfaceShader> shader);

    /// Heard after every change of at(), by surface.
    std::function<void(std::size_t surface)> surfaceChanged;
    /// Heard after all surfaces of a change, and after saving.
    std::function<void()> stateChanged;

  private:
    const Scene& scene_;
    ModuleCopy module_;
    Shader scratch_;
    std::vector<std::unique_ptr<Shader>> records_;  ///< by surface; null: not made
    std::vector<std::size_t> listed_;
    SurfaceShaders now_;
    SurfaceShaders saved_;
    SurfaceShaders clean_;
};

}  // namespace tavora::studio
