#pragma once

#include <string>
#include <string_view>

#include "studio/render/image/stored_picture.h"

namespace tavora::studio {

/// The pixels of the picture's window as an EXR file keeps them: scene-linear, colour
/// premultiplied, half or float. Values beyond the range of halves become the largest.
std::string exrRows(const Picture& picture, const PictureFormat& format);

/// The bytes of an EXR file, the picture as display window and its window as data window.
/// Throws std::bad_alloc.
std::string encodeExr(const StoredPicture& picture);

/// Reads one, all of it. False where it is damaged, incomplete or none of this program's.
/// Throws std::bad_alloc.
bool decodeExr(std::string_view bytes, StoredPicture& picture);

}  // namespace tavora::studio
