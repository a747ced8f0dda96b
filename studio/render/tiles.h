#pragma once

#include <cstddef>
#include <vector>

#include "studio/render/picture.h"

namespace tavora::studio {

/// Squares of 32 x 32 pixels that cover `window`, row by row; those at the right
/// and bottom may be smaller.
std::vector<PixelBox> tilesOf(const PixelBox& window);

}  // namespace tavora::studio
