#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "studio/render/image/picture.h"

namespace tavora::studio {

enum class PictureDepth { Default, Eight, Sixteen, Half, Float };

/// How a picture is kept in a file.
struct PictureFormat {
    enum class Kind { Png, Exr } kind = Kind::Png;
    PictureDepth depth = PictureDepth::Eight;  ///< never Default; 8 or 16 for PNG
    bool alpha = false;                        ///< keep the alpha channel

    bool operator==(const PictureFormat&) const = default;
    std::size_t channels() const { return alpha ? 4 : 3; }
    std::size_t pixelBytes() const;
};

/// What a picture's file says of how it was made, by name.
using PictureNotes = std::map<std::string, std::string>;

/// A picture as a file keeps it, to the bit.
struct StoredPicture {
    PictureFormat format;
    int width = 0;  ///< of the whole picture; a PNG file knows its window alone
    int height = 0;
    PixelBox window;
    PictureNotes notes;
    /// The window's pixels, rows from the top, channels side by side: levels of a PNG file
    /// with the high byte first, halves or floats of an EXR file as the processor has them.
    std::string rows;

    std::size_t rowBytes() const {
        return static_cast<std::size_t>(window.width()) * format.pixelBytes();
    }
};

/// The bytes of the picture's file: no date, so equal pictures are equal files. Throws
/// std::bad_alloc.
std::string encodeStored(const StoredPicture& picture);

/// Reads a file that this program wrote, wholly. Throws Error, Fault::Scene for one that
/// cannot be read, is damaged or incomplete, or of another program.
StoredPicture readStoredPicture(const std::filesystem::path& file);

/// The notes of a whole picture of this program; none where the file is anything else, or
/// not there.
std::optional<PictureNotes> notesOfCompletePicture(const std::filesystem::path& file);

}  // namespace tavora::studio
