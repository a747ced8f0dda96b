#pragma once

#include <fnmatch.h>
#include <string>

namespace tavora::studio {

/// Whether `pattern` is that name, which may hold brackets and stars of its own,
/// or a glob ("Lamp*") that it matches.
inline bool matchesName(const std::string& pattern, const std::string& name) {
    return name == pattern || ::fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
}

}  // namespace tavora::studio
