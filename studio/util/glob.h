#pragma once

#include <fnmatch.h>
#include <string>

namespace tavora::studio {

/// Whether `pattern` is exactly `name`, which may itself contain brackets and stars, or a glob
/// ("Lamp*") that matches it.
inline bool matchesName(const std::string& pattern, const std::string& name) {
    return name == pattern || ::fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
}

}  // namespace tavora::studio
