#pragma once

#include <filesystem>
#include <string>

#include "host/module.h"

namespace tavora::studio {

/// The first server record of a class in a module that has the name `server`, or any name when
/// that is empty. When there is none, throws Error, Fault::Module, that lists the classes of the
/// module.
const HostServerRecord& findServer(const HostModuleDescriptor& module,
                                   const std::filesystem::path& file, const std::string& className,
                                   const std::string& server);

/// Activates a class with `version` of its record. Throws Error, Fault::Module, when the module
/// needs another version, or services that the host lacks, which are then listed.
void activate(const HostServerRecord& server, int version, HostLookup* lookup, void* classRecord,
              const std::filesystem::path& file);

}  // namespace tavora::studio
