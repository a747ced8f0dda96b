#pragma once

#include <string>

#include "studio/render/picture.h"

namespace tavora::studio {

/// The bytes of an EXR file: scene-linear, colour premultiplied, half or float,
/// the picture as display window and its window as data window. Values beyond
/// the range of halves become the largest half. Throws std::bad_alloc.
std::string encodeExr(const Picture& picture, bool wholeFloats, bool alpha);

}  // namespace tavora::studio
