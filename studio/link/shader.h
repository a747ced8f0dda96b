#pragma once

#include <filesystem>
#include <string>

#include "host/handler.h"
#include "studio/link/module_copy.h"
#include "studio/link/state_block.h"

namespace tavora::studio {

/// Owns a shader instance on a surface. Its ModuleCopy must outlive it. One thread at a time, the
/// one that uses the copy.
class Shader {
  public:
    /// `surface` may be null. Throws Error, Fault::Module, with the module's message when it
    /// cannot create an instance.
    Shader(const ModuleCopy& module, HostSurfaceId surface);
    ~Shader();
    Shader(Shader&& other) noexcept;
    Shader& operator=(Shader&&) = delete;
    Shader(const Shader&) = delete;
    Shader& operator=(const Shader&) = delete;

    /// Loads or saves the settings. Throws Error, Fault::Module, with the module's message. After a
    /// damaged block, the settings are whatever the module left.
    void load(const StateBlock& block);
    StateBlock save() const;

    /// HOST_SHADER_... bits. Outside of passes, or after beginPass().
    unsigned flags() const;
    /// A description in one line; empty when the module has none.
    std::string descriptionLine() const;

    /// Begins a render pass, with the module's init and new time, and ends it after the last
    /// sample. No evaluation by the same copy may run during these calls. Throws Error,
    /// Fault::Module, with the module's message.
    void beginPass(int renderMode, int frame, double seconds);
    void endPass();

    /// Between beginPass() and endPass().
    void evaluate(HostSample& sample) const { handler_->evaluate(instance_, &sample); }

    HostInstance instance() const { return instance_; }

  private:
    const HostShaderHandler* handler_;
    HostInstance instance_;
};

/// The settings of a new shader: the user's stored defaults, or else the module's own.
StateBlock newShaderSettings(const ModuleCopy& module);

}  // namespace tavora::studio
