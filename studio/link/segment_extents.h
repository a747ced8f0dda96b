#pragma once

#include <cstdint>

namespace tavora::studio {

/// How long a module file must be for all that its program headers tell the loader to map.
/// Pages behind the end of a file that is shorter can be mapped but not read: the program
/// would be killed by SIGBUS. 0 for what is no file of this machine's kind, which the
/// loader itself refuses.
std::uint64_t leastModuleSize(int descriptor);

}  // namespace tavora::studio
