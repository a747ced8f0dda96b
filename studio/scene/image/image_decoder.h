#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "studio/scene/scene.h"
#include "studio/util/memory_budget.h"

namespace tavora::studio {

/// Decodes a PNG, JPEG or WebP file to 8-bit RGBA; of an animation, the first frame. `name`
/// becomes Image::name. The pixels, and what decoding needs temporarily, are charged to
/// `memory`; the caller owns the charge for the pixels. Throws Error, whose text says what
/// is wrong but not where ("is a damaged PNG"), so that the caller can add the name. Any
/// thread.
Image decodeImage(std::span<const std::uint8_t> file, const std::string& name,
                  MemoryBudget& memory);

}  // namespace tavora::studio
