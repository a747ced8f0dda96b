#pragma once

#include <filesystem>
#include <string>

#include "studio/link/state_block.h"

namespace tavora::studio {

/// The module as far as settings need it.
struct ShaderClass {
    std::filesystem::path module;
    std::string server;   ///< its name in scene files
    StateBlock defaults;  ///< settings of a new shader
};

/// Finds the module, `option` first, and asks it. Throws LinkError.
ShaderClass openShaderClass(const std::string& option);

}  // namespace tavora::studio
