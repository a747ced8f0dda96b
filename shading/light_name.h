#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace tavora {

/// A number by which two names are told apart fast: different numbers mean
/// different names. It is made of the length and the last characters, since
/// many lights differ in nothing else ("Light (17)").
inline std::uint64_t lightNameKey(const char* name) {
    const std::size_t length = std::strlen(name);
    std::uint64_t ending = 0;
    const std::size_t size = std::min(length, sizeof ending);
    std::memcpy(&ending, name + length - size, size);
    return ending + length * 0x9E3779B97F4A7C15u;
}

}  // namespace tavora
