#pragma once

#include <optional>
#include <string>
#include <vector>

#include "studio/link/state_block.h"

namespace tavora::studio {

/// The shader on a surface: as a scene file keeps it, an edit changes it, and a
/// render uses it. Plain data.
struct SurfaceShader {
    std::string server = {};  ///< name of the plug-in class, e.g. "TAVO"
    bool enabled = true;      ///< false: kept, but the surface renders plain
    StateBlock block = {};    ///< its settings

    /// To the bit: a number that is none equals itself, 0 is not -0.
    friend bool operator==(const SurfaceShader& a, const SurfaceShader& b);
};

/// One entry a surface of a scene; none where there never was a shader.
using SurfaceShaders = std::vector<std::optional<SurfaceShader>>;

/// The settings that shade the surface; null where it renders plain.
const StateBlock* activeBlock(const std::optional<SurfaceShader>& shader);

/// Equal to the bit.
bool sameBits(const StateBlock& a, const StateBlock& b);

}  // namespace tavora::studio
