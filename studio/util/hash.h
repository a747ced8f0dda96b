#pragma once

#include <cstdint>
#include <string_view>

namespace tavora::studio {

/// FNV-1a with 64 bits, to identify contents and names. Not a cryptographic hash.
constexpr std::uint64_t hashOf(std::string_view bytes) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    return hash;
}

}  // namespace tavora::studio
