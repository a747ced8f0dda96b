#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "studio/link/module_copy.h"
#include "studio/link/shader.h"
#include "studio/render/renderer.h"
#include "studio/services/scene_index.h"

namespace tavora::studio {

/// A shader ready for samples, with what it said it changes.
struct ActiveShader {
    Shader* shader = nullptr;  ///< null: plain diffuse shading
    unsigned flags = 0;        ///< HOST_SHADER_... bits
};

/// One render thread's own copy of the module and its shaders, from the start
/// of a pass to its end. The thread's ServiceBinding must be in place where it
/// is made and used. One thread at a time.
class LaneShaders {
  public:
    /// `shading` has one entry a surface. Throws LinkError.
    LaneShaders(const SceneIndex& scene, const std::vector<SurfaceShading>& shading,
                const std::filesystem::path& module);
    /// Ends the pass.
    ~LaneShaders();
    LaneShaders(const LaneShaders&) = delete;
    LaneShaders& operator=(const LaneShaders&) = delete;

    ActiveShader of(int surface) const { return active_[static_cast<std::size_t>(surface)]; }

  private:
    void make(const SceneIndex& scene, const std::vector<SurfaceShading>& shading,
              const std::filesystem::path& module);

    std::optional<ModuleCopy> module_;
    std::vector<Shader> shaders_;       ///< after `module_`: they go first
    std::vector<ActiveShader> active_;  ///< by surface
};

}  // namespace tavora::studio
