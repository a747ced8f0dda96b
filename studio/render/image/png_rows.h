#pragma once

#include <string>
#include <string_view>

#include "studio/render/image/stored_picture.h"

namespace tavora::studio {

/// The pixels of the picture's window as a PNG file keeps them: encoded for display (sRGB),
/// 8 or 16 bits a channel; with alpha, colour is divided by it. What is no number is black.
std::string pngRows(const Picture& picture, const PictureFormat& format);

/// The bytes of a PNG file. Throws std::bad_alloc.
std::string encodePng(const StoredPicture& picture);

/// Reads one, all of it. False where it is damaged, incomplete or none of this program's.
/// Throws std::bad_alloc.
bool decodePng(std::string_view bytes, StoredPicture& picture);

}  // namespace tavora::studio
