#pragma once

#include <string>

#include "studio/render/picture.h"

namespace tavora::studio {

/// The bytes of a PNG file with the pixels of the picture's window, encoded for
/// display (sRGB), 8 or 16 bits a channel; with `alpha`, colour is divided by
/// it. What is no number is black. Throws std::bad_alloc.
std::string encodePng(const Picture& picture, bool sixteenBits, bool alpha);

}  // namespace tavora::studio
