#pragma once

#include <cstdint>

namespace tavora::studio {

/// Limits on what reading a scene file may use.
struct ReadOptions {
    /// Bytes of memory for reading and rendering the scene; 0: half of the machine's.
    std::uint64_t memory = 0;
    /// Whether the scene may use files outside its folder, by symbolic links or "..".
    bool outside = false;
};

}  // namespace tavora::studio
