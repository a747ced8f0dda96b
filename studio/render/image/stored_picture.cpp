#include "studio/render/image/stored_picture.h"

#include <cstdint>
#include <fmt/format.h>
#include <system_error>

#include "studio/files/whole_file.h"
#include "studio/render/image/exr_rows.h"
#include "studio/render/image/png_rows.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

constexpr std::size_t kLargestFile = std::size_t{1} << 34;

bool decode(std::string_view bytes, StoredPicture& picture) {
    if (bytes.starts_with("\x89PNG")) return decodePng(bytes, picture);
    return bytes.starts_with("v/1\x01") && decodeExr(bytes, picture);
}

}  // namespace

std::size_t PictureFormat::pixelBytes() const {
    const std::size_t sample = depth == PictureDepth::Float   ? 4
                               : depth == PictureDepth::Eight ? 1
                                                              : 2;
    return channels() * sample;
}

std::string encodeStored(const StoredPicture& picture) {
    return picture.format.kind == PictureFormat::Kind::Png ? encodePng(picture)
                                                           : encodeExr(picture);
}

StoredPicture readStoredPicture(const std::filesystem::path& file) {
    StoredPicture picture;
    std::string bytes;
    try {
        bytes = readWholeFile(file, kLargestFile);
    } catch (const std::system_error& error) {
        throw Error(Fault::Scene,
                    fmt::format("{}: cannot be read: {}", file.string(), error.code().message()));
    }
    if (decode(bytes, picture)) return picture;
    throw Error(Fault::Scene, fmt::format("{}: is truncated, damaged or no picture that tavora "
                                          "wrote: render it again",
                                          file.string()));
}

std::optional<PictureNotes> notesOfCompletePicture(const std::filesystem::path& file) {
    try {
        return readStoredPicture(file).notes;
    } catch (const Error&) {
        return std::nullopt;
    }
}

}  // namespace tavora::studio
