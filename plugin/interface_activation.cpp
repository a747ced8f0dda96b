#include "plugin/interface_activation.h"

#include "host/interface.h"
#include "plugin/services.h"

namespace tavora {

int Interface(int version, HostLookup* lookup, void* classRecord, void* /*serverData*/) {
    if (version != HOST_SHADER_INTERFACE_VERSION) return HOST_ACTIVATION_BAD_VERSION;

    auto* interface = static_cast<HostShaderInterface*>(classRecord);
    interface->panel = nullptr;
    // There is no panel yet: the host offers no options for the shader.
    interface->options = nullptr;
    interface->command = nullptr;
    global = lookup;
    return HOST_ACTIVATION_OK;
}

}  // namespace tavora
