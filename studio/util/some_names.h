#pragma once

#include <string>
#include <vector>

namespace tavora::studio {

/// The first names of a list, for one line: "A, B, C, D and 3 more".
std::string someOf(const std::vector<std::string>& names);

}  // namespace tavora::studio
