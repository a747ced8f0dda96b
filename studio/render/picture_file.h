#pragma once

#include <filesystem>

#include "studio/render/picture.h"

namespace tavora::studio {

enum class PictureDepth { Default, Eight, Sixteen, Half, Float };

/// How a picture is kept in a file.
struct PictureFormat {
    enum class Kind { Png, Exr } kind = Kind::Png;
    PictureDepth depth = PictureDepth::Eight;  ///< never Default; 8 or 16 for PNG
    bool alpha = false;                        ///< keep the alpha channel
};

/// The format that `file`'s suffix (.png, .exr) and `depth` make together.
/// Default: 8 bit for PNG, half for EXR. Throws std::invalid_argument with one
/// line for another suffix and for a depth that the format has not.
PictureFormat pictureFormat(const std::filesystem::path& file, PictureDepth depth, bool alpha);

/// Writes a picture: PNG encoded for display (alpha not premultiplied, only the
/// window's pixels), EXR scene-linear (alpha premultiplied, display window
/// kept, no date). The file is complete or absent: temporary name in the same
/// folder, every write checked, flushed to disk, read back, renamed. Equal
/// pictures are equal files.
/// Throws OutputError.
void writePicture(const Picture& picture, const std::filesystem::path& file,
                  const PictureFormat& format);

/// Fails early, before the picture is rendered: throws OutputError when a file
/// could not be created at this place.
void checkWritable(const std::filesystem::path& file);

}  // namespace tavora::studio
