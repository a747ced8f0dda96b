#include "studio/render/image/picture_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fmt/format.h>
#include <stdexcept>
#include <string>

#include "studio/files/atomic_file.h"
#include "studio/files/standard_streams.h"
#include "studio/files/whole_file.h"
#include "studio/render/image/exr_rows.h"
#include "studio/render/image/png_rows.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

struct Suffix {
    const char* text;
    PictureFormat::Kind kind;
    std::array<PictureDepth, 2> depths;  ///< the first is the default
    const char* depthNames;
};

constexpr std::array<Suffix, 2> kSuffixes{{
    {".png", PictureFormat::Kind::Png, {PictureDepth::Eight, PictureDepth::Sixteen}, "8 or 16"},
    {".exr", PictureFormat::Kind::Exr, {PictureDepth::Half, PictureDepth::Float}, "half or float"},
}};

// None for a suffix of another kind.
const Suffix* knownSuffix(const fs::path& file) {
    std::string text = file.extension();
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto found = std::find_if(kSuffixes.begin(), kSuffixes.end(),
                                    [&](const Suffix& suffix) { return text == suffix.text; });
    return found == kSuffixes.end() ? nullptr : &*found;
}

const Suffix& suffixOf(PictureFormat::Kind kind) {
    return *std::find_if(kSuffixes.begin(), kSuffixes.end(),
                         [&](const Suffix& suffix) { return suffix.kind == kind; });
}

const Suffix& settledSuffix(const fs::path& file, std::optional<PictureFormat::Kind> kind) {
    const Suffix* suffix = knownSuffix(file);
    if (kind && suffix != nullptr && suffix->kind != *kind) {
        throw std::invalid_argument(fmt::format(
            "{}: the suffix names another format than --format; leave one out", file.string()));
    }
    if (suffix != nullptr) return *suffix;
    if (kind || isStream(file)) return suffixOf(kind.value_or(PictureFormat::Kind::Png));
    throw std::invalid_argument(fmt::format(
        "{}: a picture's name must end in .png or .exr, or --format say which", file.string()));
}

}  // namespace

PictureFormat pictureFormat(const fs::path& file, PictureDepth depth, bool alpha,
                            std::optional<PictureFormat::Kind> kind) {
    const Suffix& suffix = settledSuffix(file, kind);
    if (depth == PictureDepth::Default) depth = suffix.depths[0];
    if (std::find(suffix.depths.begin(), suffix.depths.end(), depth) == suffix.depths.end()) {
        throw std::invalid_argument(fmt::format("{}: the depth of a {} file is {}",
                                                isStream(file) ? "standard output" : file.string(),
                                                suffix.text, suffix.depthNames));
    }
    return {suffix.kind, depth, alpha};
}

std::string encodePicture(const Picture& picture, const PictureFormat& format,
                          const PictureNotes& notes) {
    StoredPicture stored{format, picture.width, picture.height, picture.window, notes, {}};
    stored.rows = format.kind == PictureFormat::Kind::Png ? pngRows(picture, format)
                                                          : exrRows(picture, format);
    return encodeStored(stored);
}

void writePicture(const Picture& picture, const fs::path& file, const PictureFormat& format,
                  const PictureNotes& notes) {
    writeWholeFile(file, encodePicture(picture, format, notes));
}

void checkWritable(const fs::path& file) {
    const AtomicFile trial(file);
}

}  // namespace tavora::studio
