#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/types.h"

namespace tavora::studio {

/// Where to look for the module "tavora.so": `option` (a file or a folder) when
/// not empty, else the folders and files of TAVORA_PLUGIN_PATH (':' between
/// them) when it names any, else beside the running program. Returns the first
/// that exists.
/// Throws Error, Fault::Module that names every place it looked.
std::filesystem::path findModule(const std::string& option);

/// What a module says of itself.
struct ModuleSummary {
    std::filesystem::path file;
    unsigned long descriptorVersion = 0;
    struct Class {
        std::string className;
        std::string serverName;
        int version = 0;          ///< that it was activated with
        std::string description;  ///< of a new instance; handlers only
    };
    std::vector<Class> classes;
};

/// Loads `file`, activates every class that this host knows with its `lookup`,
/// and unloads it again. Throws Error, Fault::Module for what ModuleCopy throws it for;
/// classes of other kinds are listed with version 0.
ModuleSummary summarize(const std::filesystem::path& file, HostLookup* lookup);

}  // namespace tavora::studio
