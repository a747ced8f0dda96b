#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/types.h"

namespace tavora::studio {

/// Finds the module "tavora.so": at `option` (a file or its folder) when that is not empty, else
/// at the files and folders in TAVORA_PLUGIN_PATH (separated by ':') when there are any, else in
/// the folder of the running program. Returns the first file that exists. Throws Error,
/// Fault::Module, that lists all files that were tried.
std::filesystem::path findModule(const std::string& option);

/// A module's own description.
struct ModuleSummary {
    std::filesystem::path file;
    unsigned long descriptorVersion = 0;
    struct Class {
        std::string className;
        std::string serverName;
        int version = 0;          ///< with which it was activated; 0: not activated
        std::string description;  ///< of a new instance; handlers only
    };
    std::vector<Class> classes;
};

/// Loads `file`, activates all classes of kinds that this host has, with `lookup`, and unloads it
/// again. Throws what ModuleCopy throws.
ModuleSummary summarize(const std::filesystem::path& file, HostLookup* lookup);

}  // namespace tavora::studio
