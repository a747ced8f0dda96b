#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavora::studio {

/// The bytes of a "data:..;base64,.." URI; empty when it is not valid.
std::optional<std::vector<std::uint8_t>> dataOfUri(std::string_view uri);

/// The path that a relative URI names, percent-decoded; it may contain "..". Empty when the
/// URI is anything else: absolute, with a scheme, with a backslash or NUL, or with broken
/// escapes.
std::optional<std::string> fileOfUri(std::string_view uri);

inline bool isDataUri(std::string_view uri) {
    return uri.substr(0, 5) == "data:";
}

}  // namespace tavora::studio
