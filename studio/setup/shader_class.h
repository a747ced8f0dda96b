#pragma once

#include <filesystem>
#include <string>

#include "studio/link/module_copy.h"
#include "studio/link/state_block.h"

namespace tavora::studio {

/// The module as far as settings need it.
struct ShaderClass {
    std::filesystem::path module;
    std::string server;  ///< its name in scene files
    StateBlock builtIn;  ///< the module's own settings of a new shader
};

/// The settings that a new shader has where the user stored none as default:
/// what looks are laid over, so that they give everybody the same picture.
StateBlock builtInSettings(const ModuleCopy& module);

/// Finds the module, `option` first, and asks it. Throws Error, Fault::Module.
ShaderClass openShaderClass(const std::string& option);

}  // namespace tavora::studio
