#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// Decodes a PNG, JPEG or WebP file to 8-bit RGBA. Throws Error whose text
/// is what is wrong alone, for the caller to say where. Any thread.
Image decodeImage(std::span<const std::uint8_t> file, const std::string& name);

}  // namespace tavora::studio
