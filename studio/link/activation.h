#pragma once

#include <filesystem>
#include <string>

#include "host/module.h"

namespace tavora::studio {

/// The first server record of a class in a module, under the name `server` or
/// any when that is empty. Throws Error, Fault::Module that lists what there is instead.
const HostServerRecord& findServer(const HostModuleDescriptor& module,
                                   const std::filesystem::path& file, const std::string& className,
                                   const std::string& server);

/// Activates the class for `version` of its record. Throws Error, Fault::Module: the
/// module wants another version, or which of the services it asked for are missing.
void activate(const HostServerRecord& server, int version, HostLookup* lookup, void* classRecord,
              const std::filesystem::path& file);

}  // namespace tavora::studio
