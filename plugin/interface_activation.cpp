#include "plugin/interface_activation.h"

#include "host/interface.h"
#include "panel/settings_panel.h"
#include "plugin/record/services.h"

namespace tavora {

int Interface(int version, HostLookup* lookup, void* classRecord, void* /*serverData*/) {
    if (version != HOST_SHADER_INTERFACE_VERSION) return HOST_ACTIVATION_BAD_VERSION;

    auto* interface = static_cast<HostShaderInterface*>(classRecord);
    interface->panel = nullptr;
    interface->options = iteminfo != nullptr ? UI_callback : nullptr;
    interface->command = nullptr;
    global = lookup;
    return HOST_ACTIVATION_OK;
}

}  // namespace tavora
