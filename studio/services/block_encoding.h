#pragma once

#include <string>
#include <string_view>

#include "studio/link/state_block.h"

namespace tavora::studio {

/// A block as bytes of a settings file: an eight-byte mark, then for each item
/// its kind ('i', 'f', 's') and its value, little-endian, 4 bytes; strings by
/// length and bytes.
std::string encodeBlock(const StateBlock& block);

/// The block in `bytes`, as far as it is whole: reading stops at the first item
/// that is cut off or of unknown kind. Empty without the mark.
StateBlock decodeBlock(std::string_view bytes);

}  // namespace tavora::studio
