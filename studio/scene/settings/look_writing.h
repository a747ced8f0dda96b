#pragma once

#include <filesystem>

#include "studio/link/state_block.h"

namespace tavora::studio {

/// Writes the settings of a complete block as a look that readLook() reads, named as the
/// file is, whole or not at all. Throws Error, Fault::Output, and Fault::Scene for values
/// that no look may have.
void writeLook(const StateBlock& block, const std::filesystem::path& file);

}  // namespace tavora::studio
