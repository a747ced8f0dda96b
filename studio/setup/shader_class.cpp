#include "studio/setup/shader_class.h"

#include "studio/link/module_copy.h"
#include "studio/link/module_file.h"
#include "studio/link/shader.h"
#include "studio/services/directory_info.h"
#include "studio/services/registry.h"

namespace tavora::studio {

StateBlock builtInSettings(const ModuleCopy& module) {
    const HiddenSettingsFolder hidden;
    return newShaderSettings(module);
}

ShaderClass openShaderClass(const std::string& option) {
    const ModuleCopy module(findModule(option), findService);
    return {module.file(), module.server(), builtInSettings(module)};
}

}  // namespace tavora::studio
