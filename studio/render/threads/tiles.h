#pragma once

#include <cstddef>
#include <vector>

#include "studio/render/image/picture.h"

namespace tavora::studio {

inline constexpr int kTileWidth = 32;  ///< and height, in pixels

/// Squares of kTileWidth pixels each way that alphaMode `window`, row by row; those at the right
/// and bottom may be smaller.
std::vector<PixelBox> tilesOf(const PixelBox& window);

}  // namespace tavora::studio
