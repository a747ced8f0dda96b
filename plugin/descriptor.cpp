#include <cstdint>

#include "host/handler.h"
#include "host/interface.h"
#include "host/module.h"
#include "plugin/handler_activation.h"
#include "plugin/interface_activation.h"

namespace tavora {
namespace {

constexpr const char* serverName = "TAVO";

// The module has nothing to start or stop: any token but null says "ready".
void* Startup() {
    return reinterpret_cast<void*>(std::uintptr_t{4});  // NOLINT(performance-no-int-to-ptr)
}

void Shutdown(void* /*token*/) {}

constexpr HostServerRecord ServerDesc[] = {
    {HOST_SHADER_HANDLER_CLASS, serverName, Handler, nullptr},
    {HOST_SHADER_INTERFACE_CLASS, serverName, Interface, nullptr},
    {nullptr, nullptr, nullptr, nullptr},
};

}  // namespace
}  // namespace tavora

extern "C" {

/// The module's one exported symbol.
[[gnu::visibility("default")]] extern const HostModuleDescriptor _mod_descrip;

const HostModuleDescriptor _mod_descrip = {
    HOST_MODULE_SYNC, HOST_MODULE_VERSION, HOST_MODULE_MACHINE,
    tavora::Startup,  tavora::Shutdown,    tavora::ServerDesc,
};
}
