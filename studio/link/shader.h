#pragma once

#include <filesystem>
#include <string>

#include "host/handler.h"
#include "studio/link/module_copy.h"
#include "studio/link/state_block.h"

namespace tavora::studio {

/// One shader instance on one surface, owned. Its ModuleCopy must outlive it.
/// One thread at a time, the one that owns the copy.
class Shader {
  public:
    /// Throws Error, Fault::Module with the module's own text when it cannot create one.
    Shader(const ModuleCopy& module, HostSurfaceId surface);
    ~Shader();
    Shader(Shader&& other) noexcept;
    Shader& operator=(Shader&&) = delete;
    Shader(const Shader&) = delete;
    Shader& operator=(const Shader&) = delete;

    /// Throws Error, Fault::Module with the module's own text. The module decides what a
    /// damaged block leaves behind.
    void load(const StateBlock& block);
    StateBlock save() const;

    /// HOST_SHADER_... bits. Between passes, or after beginPass().
    unsigned flags() const;
    /// One line for lists; empty when the module gives none.
    std::string descriptionLine() const;

    /// A render pass: init and new time before the first sample, endPass()
    /// after the last. No evaluation of the same copy may run meanwhile.
    /// Throws Error, Fault::Module with the module's own text.
    void beginPass(int renderMode, int frame, double seconds);
    void endPass();

    /// Between beginPass() and endPass().
    void evaluate(HostSample& sample) const { handler_->evaluate(instance_, &sample); }

    HostInstance instance() const { return instance_; }

  private:
    const HostShaderHandler* handler_;
    HostInstance instance_;
};

/// The settings of a newly created shader: the module's own defaults, or those
/// that the user stored.
StateBlock newShaderSettings(const ModuleCopy& module);

}  // namespace tavora::studio
