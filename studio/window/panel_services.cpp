#include "studio/window/panel_services.h"

#include <fmt/format.h>

#include "studio/util/error.h"

namespace tavora::studio {

PanelBinding::PanelBinding(const LightSet& lights)
    : index_(emptyScene_), binding_(index_, lights) {}

void openOptions(const ModuleCopy& module, Shader& record) {
    const HostShaderInterface panelInterface = module.activateInterface(record.instance());
    if (panelInterface.options == nullptr) {
        throw Error(Fault::Module,
                    fmt::format("{}: the module has no settings panel; its settings can be "
                                "changed with tavora settings --set",
                                module.file().string()));
    }
    const HostError error = panelInterface.options(record.instance());
    if (error != nullptr)
        throw Error(Fault::Module, fmt::format("{}: {}", module.file().string(), error));
}

}  // namespace tavora::studio
