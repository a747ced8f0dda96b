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

/// New shaders by index into Scene::surfaces; empty for a surface that has none.
using ShaderChanges = std::vector<std::pair<std::size_t, std::optional<SurfaceShader>>>;

/// The shaders on a scene's surfaces: their current settings, those in the scene's file, and
/// the shader instances ("records") that panels edit, which belong to a module copy of their
/// own. GUI thread.
class SceneSettings {
  public:
    /// Determines the current shaders like `tavora render`: stored settings, then the request's
    /// looks and changes, and the default look when nothing is stored and the request has no
    /// looks. A stored shader that the request removes is disabled. `scene` must outlive this
    /// object. Throws what planSurfaces() throws, and Error, Fault::Module.
    SceneSettings(const Scene& scene, const ShadingRequest& request, Report& report);
    SceneSettings(const SceneSettings&) = delete;
    SceneSettings& operator=(const SceneSettings&) = delete;

    const Scene& scene() const { return scene_; }
    const ModuleCopy& module() const { return module_; }
    /// The surfaces that the user sees, as indices into Scene::surfaces, in order.
    const std::vector<std::size_t>& surfaces() const { return listed_; }

    /// The current shader of a surface; empty when it never had one.
    const std::optional<SurfaceShader>& at(std::size_t surface) const { return now_[surface]; }
    /// The shader in the file.
    const std::optional<SurfaceShader>& saved(std::size_t surface) const { return saved_[surface]; }
    /// The shader with which the document counts as unmodified: the one in the file, or the
    /// default look when the file has no shaders. The default look is saved together with the
    /// first change.
    const std::optional<SurfaceShader>& clean(std::size_t surface) const { return clean_[surface]; }
    bool isModified() const { return now_ != clean_; }
    /// Whether the file has another shader than the surface. A default look on a surface
    /// without a material does not count, since no file can store it.
    bool isUnsaved(std::size_t surface) const;

    /// Changes the shaders of surfaces and their records. Only for the undo stack, so that every
    /// change can be undone.
    void set(const ShaderChanges& changes);
    /// To be called after saving: the file has the current shaders of these surfaces, and could
    /// not store others that changed.
    void markSaved(const std::vector<std::size_t>& surfaces);

    /// The instance that a panel edits, made at its first use. After changing its settings,
    /// recordStep() must be pushed on the undo stack. Its address does not change.
    Shader& record(std::size_t surface);
    /// The surface to whose record the instance belongs; empty for any other instance.
    std::optional<std::size_t> surfaceOf(HostInstance instance) const;

    /// A shader for a surface that never had one, with the defaults that the user has stored
    /// now (a panel may store others).
    SurfaceShader newShader() const;
    /// A shader as it is after loading it into a module and saving it again, to the bit, so that
    /// opening a panel changes nothing. Throws Error, Fault::Scene, for a damaged block.
    std::optional<SurfaceShader> normalized(std::optional<SurfaceShader> shader);

    /// Called after every change of at(), for each surface.
    std::function<void(std::size_t surface)> surfaceChanged;
    /// Called once after all surfaces of a change, and after saving.
    std::function<void()> stateChanged;

  private:
    const Scene& scene_;
    ModuleCopy module_;
    Shader scratch_;
    std::vector<std::unique_ptr<Shader>> records_;  ///< by surface; null: not used yet
    std::vector<std::size_t> listed_;
    SurfaceShaders now_;
    SurfaceShaders saved_;
    SurfaceShaders clean_;
};

}  // namespace tavora::studio
