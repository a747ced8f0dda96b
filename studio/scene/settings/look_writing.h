#pragma once

#include <filesystem>

#include "studio/link/state_block.h"

namespace tavora::studio {

/// Writes the settings of a complete block to a look file, which gets the file's name as its
/// name. Writes the whole file or nothing. Throws Error: Fault::Output when the file cannot
/// be written, Fault::Scene for values that a look may not have.
void writeLook(const StateBlock& block, const std::filesystem::path& file);

}  // namespace tavora::studio
