#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "studio/render/image/picture.h"
#include "studio/render/image/stored_picture.h"

namespace tavora::studio {

/// The format that `kind`, else `file`'s suffix (.png, .exr), and `depth` make
/// together. Default: 8 bit for PNG, half for EXR; PNG for the file "-". Throws
/// std::invalid_argument with one line for another suffix, for a suffix that
/// contradicts `kind` and for a depth that the format has not.
PictureFormat pictureFormat(const std::filesystem::path& file, PictureDepth depth, bool alpha,
                            std::optional<PictureFormat::Kind> kind = {});

/// The bytes of a picture's file: PNG encoded for display (alpha not premultiplied, only the
/// window's pixels), EXR scene-linear (alpha premultiplied, display window
/// kept, no date), with its notes. Equal pictures with equal notes are equal files.
std::string encodePicture(const Picture& picture, const PictureFormat& format,
                          const PictureNotes& notes = {});

/// Writes encodePicture() to a file that is complete or absent: temporary name in
/// the same folder, every write checked, flushed to disk, read back, renamed.
/// Throws Error, Fault::Output.
void writePicture(const Picture& picture, const std::filesystem::path& file,
                  const PictureFormat& format, const PictureNotes& notes = {});

/// Fails early, before the picture is rendered: throws Fault::Output when a file
/// could not be created at this place.
void checkWritable(const std::filesystem::path& file);

}  // namespace tavora::studio
