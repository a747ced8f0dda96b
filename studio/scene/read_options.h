#pragma once

#include <cstdint>

namespace tavora::studio {

/// What reading a scene may use.
struct ReadOptions {
    /// Bytes of memory that the scene may take, to be read and to be rendered; 0: half of
    /// the machine's.
    std::uint64_t memory = 0;
    /// Whether it may name files outside its folder, by symbolic links or "..".
    bool outside = false;
};

}  // namespace tavora::studio
