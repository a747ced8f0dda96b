#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "studio/link/module_copy.h"
#include "studio/link/shader.h"
#include "studio/scene/scene.h"
#include "studio/setup/shader_class.h"

namespace tavora::studio {

/// The records that panels edit, one a surface, made on first use, on a module
/// copy of their own. One thread.
class Records {
  public:
    /// Finds and loads the module, `option` first. `scene` must outlive it.
    /// Throws Error, Fault::Module.
    Records(const std::string& option, const Scene& scene);

    const ModuleCopy& module() const { return module_; }
    ShaderClass shaderClass() const;
    /// What the user gets on a surface that never had the shader: the settings
    /// stored as default, as of now (a panel may store others).
    StateBlock defaults() const { return newShaderSettings(module_); }
    /// What looks are laid over.
    StateBlock builtIn() const { return builtInSettings(module_); }
    /// What a record saves after it loaded this complete block of any version.
    StateBlock settled(const StateBlock& block);

    /// Made with the shader's settings, or those of a new one, when it is not there yet. Throws
    /// Error, Fault::Module.
    Shader& at(std::size_t surface, const std::optional<SurfaceShader>& shader);
    /// Loads the same into the record if it is there.
    void show(std::size_t surface, const std::optional<SurfaceShader>& shader);
    std::optional<std::size_t> surfaceOf(HostInstance instance) const;

  private:
    const Scene* scene_;
    ModuleCopy module_;
    Shader scratch_;
    std::vector<std::unique_ptr<Shader>> records_;  ///< by surface; null: not made
};

}  // namespace tavora::studio
