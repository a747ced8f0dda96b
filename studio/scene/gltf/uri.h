#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavora::studio {

/// The bytes of a "data:..;base64,.." URI, or none when it is not whole.
std::optional<std::vector<std::uint8_t>> dataOfUri(std::string_view uri);

/// The file that a relative URI names, percent-decoded, which may lead through "..";
/// none when it is anything else: absolute, a scheme, a backslash, a NUL, broken escapes.
std::optional<std::string> fileOfUri(std::string_view uri);

inline bool isDataUri(std::string_view uri) {
    return uri.substr(0, 5) == "data:";
}

}  // namespace tavora::studio
