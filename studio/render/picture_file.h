#pragma once

#include <filesystem>

#include "studio/render/picture.h"

namespace tavora::studio {

enum class PictureDepth { Default, Eight, Sixteen, Half, Float };

/// Whether `file`'s suffix (.png, .exr) and `depth` go together; an error text
/// or empty. Default: 8 bit for PNG, half for EXR.
struct PictureFormat {
    enum class Kind { Png, Exr } kind = Kind::Png;
    PictureDepth depth = PictureDepth::Default;
    bool alpha = false;  ///< keep the alpha channel
};

/// Writes a picture: PNG encoded for display (alpha not premultiplied, only the
/// window's pixels), EXR scene-linear (alpha premultiplied, display window
/// kept, no date). The file is complete or absent: temporary name in the same
/// folder, every write checked, flushed to disk, read back, renamed.
/// Throws OutputError.
void writePicture(const Picture& picture, const std::filesystem::path& file,
                  const PictureFormat& format);

/// Fails early, before the picture is rendered: throws OutputError when a file
/// could not be created at this place.
void checkWritable(const std::filesystem::path& file);

}  // namespace tavora::studio
