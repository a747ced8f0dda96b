#include "studio/window/panel_services.h"

#include <fmt/format.h>

#include "studio/util/error.h"

namespace tavora::studio {

PanelBinding::PanelBinding(const LightSet& lights) : index_(nothing_), binding_(index_, lights) {}

void openOptions(const ModuleCopy& module, Shader& record) {
    const HostShaderInterface shown = module.activateInterface(record.instance());
    if (shown.options == nullptr) {
        throw Error(Fault::Module,
                    fmt::format("{}: the module has no settings panel; its settings can be "
                                "changed with tavora settings --set",
                                module.file().string()));
    }
    const HostError error = shown.options(record.instance());
    if (error != nullptr)
        throw Error(Fault::Module, fmt::format("{}: {}", module.file().string(), error));
}

}  // namespace tavora::studio
