#pragma once

#include <cstdint>

namespace tavora::studio {

/// The minimum size of a module file, in bytes, so that it contains everything that its program
/// headers tell the loader to map. Pages after the end of a file can be mapped, but reading them
/// kills the program by SIGBUS. 0 for a file that is not an ELF file of this machine's class, which
/// the loader itself refuses.
std::uint64_t minModuleSize(int descriptor);

}  // namespace tavora::studio
