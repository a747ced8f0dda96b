#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "studio/scene/scene.h"
#include "studio/util/memory_budget.h"

namespace tavora::studio {

/// Decodes a PNG, JPEG or WebP file to 8-bit RGBA, of an animation the first picture.
/// The pixels are taken from `memory`, and so is what decoding needs meanwhile. Throws
/// Error whose text is what is wrong alone, for the caller to say where. Any thread.
Image decodeImage(std::span<const std::uint8_t> file, const std::string& name,
                  MemoryBudget& memory);

}  // namespace tavora::studio
