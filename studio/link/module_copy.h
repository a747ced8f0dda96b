#pragma once

#include <filesystem>
#include <string>

#include "host/handler.h"
#include "host/interface.h"
#include "host/module.h"
#include "studio/link/module_image.h"

namespace tavora::studio {

/// A started module with its shader class activated. Each render thread has a copy, and so have
/// panels; each copy has its own globals, mutex and instances. One thread at a time, of any kind.
/// Instances must be destroyed before their copy.
class ModuleCopy {
  public:
    /// Loads a private image of `file`, starts it, and activates the "ShaderHandler" class of
    /// `server`, or of its first server when that is empty, with the host's `lookup`. Throws
    /// Error, Fault::Module.
    ModuleCopy(const std::filesystem::path& file, HostLookup* lookup,
               const std::string& server = {});
    ~ModuleCopy();
    ModuleCopy(const ModuleCopy&) = delete;
    ModuleCopy& operator=(const ModuleCopy&) = delete;

    const std::filesystem::path& file() const { return image_.file(); }
    const HostModuleDescriptor& descriptor() const { return image_.descriptor(); }
    const std::string& server() const { return server_; }

    const HostInstanceCallbacks& instances() const { return instanceCallbacks_; }
    const HostRenderCallbacks& passes() const { return renderCallbacks_; }
    const HostShaderHandler& handler() const { return handler_; }

    /// Activates the "ShaderInterface" class of the same server for `instance`.
    /// Its options function is null when the module has no panel to open.
    /// Throws Error, Fault::Module. Interface thread.
    HostShaderInterface activateInterface(HostInstance instance) const;

  private:
    void start();
    void activateHandler(const std::string& server);
    void checkHandler() const;

    ModuleImage image_;
    HostLookup* lookup_;
    void* token_ = nullptr;
    std::string server_;
    HostInstanceCallbacks instanceCallbacks_{};
    HostItemCallbacks itemCallbacks_{};
    HostRenderCallbacks renderCallbacks_{};
    HostShaderHandler handler_{};
};

}  // namespace tavora::studio
