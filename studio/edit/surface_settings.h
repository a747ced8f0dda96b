#pragma once

#include <optional>

#include "studio/link/state_block.h"

namespace tavora::studio {

/// To the bit: a number that is none equals itself, 0 is not -0.
bool sameBlock(const std::optional<StateBlock>& a, const std::optional<StateBlock>& b);

/// What a surface wears.
struct SurfaceSettings {
    bool enabled = false;             ///< whether the shader works on it
    std::optional<StateBlock> block;  ///< none: the surface never had the shader

    bool operator==(const SurfaceSettings& other) const {
        return enabled == other.enabled && sameBlock(block, other.block);
    }
};

}  // namespace tavora::studio
