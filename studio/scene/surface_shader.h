#pragma once

#include <optional>
#include <string>
#include <vector>

#include "studio/link/state_block.h"

namespace tavora::studio {

/// The shader on a surface, with its settings: the form in which a scene file stores it, the
/// editor changes it and the renderer reads it. Plain data.
struct SurfaceShader {
    std::string server = {};  ///< name of the plug-in class, e.g. "TAVO"
    bool enabled = true;      ///< false: the settings stay, but the surface renders plain
    StateBlock block = {};    ///< its settings

    /// Compares floats by their bits: NaN equals the same NaN, and 0 differs from -0.
    friend bool operator==(const SurfaceShader& a, const SurfaceShader& b);
};

/// One entry for each surface of a scene; empty for a surface that never had a shader.
using SurfaceShaders = std::vector<std::optional<SurfaceShader>>;

/// The settings of a shader that is there and enabled; null for a surface that renders
/// plain. Points into `shader`.
const StateBlock* activeBlock(const std::optional<SurfaceShader>& shader);

/// Whether two blocks are equal, floats compared by their bits.
bool sameBits(const StateBlock& a, const StateBlock& b);

}  // namespace tavora::studio
