#include "studio/app/shader_class.h"

#include "studio/link/module_copy.h"
#include "studio/link/module_file.h"
#include "studio/link/shader.h"
#include "studio/services/registry.h"

namespace tavora::studio {

ShaderClass openShaderClass(const std::string& option) {
    const ModuleCopy module(findModule(option), findService);
    return {module.file(), module.server(), newShaderSettings(module)};
}

}  // namespace tavora::studio
