#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <vector>

#include "studio/link/module_copy.h"
#include "studio/link/shader.h"
#include "studio/render/options.h"
#include "studio/services/scene_index.h"

namespace tavora::studio {

/// A shader ready for samples, with what it said it changes.
struct ActiveShader {
    Shader* shader = nullptr;  ///< null: plain diffuse shading
    unsigned flags = 0;        ///< HOST_SHADER_... bits
};

/// What shades a surface from now on; null: nothing, it is plain. The block
/// belongs to the caller.
struct SurfaceChange {
    std::size_t surface = 0;
    const StateBlock* block = nullptr;
};

/// One render thread's own copy of the module and its shaders, from the start
/// of a pass to its end. The thread's ServiceBinding must be in place where it
/// is made and used. One thread at a time.
class WorkerShaders {
  public:
    /// All surfaces plain; the module is loaded when the first one is not.
    /// `scene` must outlive it.
    WorkerShaders(const SceneIndex& scene, std::filesystem::path module);
    /// `shading` has one entry a surface; begins the pass of `time`. Throws Error,
    /// Fault::Module.
    WorkerShaders(const SceneIndex& scene, const SurfaceShaders& shading,
                  const std::filesystem::path& module, const FrameTime& time = {});
    /// Ends the pass.
    ~WorkerShaders();
    WorkerShaders(const WorkerShaders&) = delete;
    WorkerShaders& operator=(const WorkerShaders&) = delete;

    /// Ends the pass, loads the settings of those surfaces alone, begins a pass.
    /// Throws Error, Fault::Module and std::bad_alloc; it can then only be destroyed.
    void change(std::span<const SurfaceChange> changes);

    /// Begins the pass of another frame, after ending that before. No thread may shade
    /// meanwhile.
    void beginFrame(const FrameTime& time);
    void endPass();

    ActiveShader of(int surface) const { return active_[static_cast<std::size_t>(surface)]; }

  private:
    void put(const SurfaceChange& change);
    void beginPass();

    const SceneIndex* scene_;
    FrameTime time_;
    std::filesystem::path file_;
    std::optional<ModuleCopy> module_;
    std::vector<std::optional<Shader>> shaders_;  ///< by surface; after `module_`: they go first
    std::vector<ActiveShader> active_;            ///< by surface
};

}  // namespace tavora::studio
