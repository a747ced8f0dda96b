#pragma once

#include <filesystem>
#include <string>

#include "studio/link/module_copy.h"
#include "studio/link/state_block.h"

namespace tavora::studio {

/// The properties of the module that settings need.
struct ShaderClass {
    std::filesystem::path module;
    std::string server;  ///< its name in scene files
    StateBlock builtIn;  ///< builtInSettings()
};

/// The settings that the module gives a new shader, without the defaults that the user stored.
/// Looks are applied to these, so that they give the same picture for everybody.
StateBlock builtInSettings(const ModuleCopy& module);

/// Finds the module (see findModule()) and reads its properties. Throws Error, Fault::Module.
ShaderClass openShaderClass(const std::string& option);

}  // namespace tavora::studio
