#include "studio/render/picture_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fmt/format.h>
#include <stdexcept>
#include <string>

#include "studio/files/atomic_file.h"
#include "studio/files/whole_file.h"
#include "studio/render/exr_encode.h"
#include "studio/render/png_encode.h"

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

const Suffix& suffixOf(const fs::path& file) {
    std::string text = file.extension();
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const Suffix& suffix : kSuffixes) {
        if (text == suffix.text) return suffix;
    }
    throw std::invalid_argument(
        fmt::format("{}: a picture's name must end in .png or .exr", file.string()));
}

}  // namespace

PictureFormat pictureFormat(const fs::path& file, PictureDepth depth, bool alpha) {
    const Suffix& suffix = suffixOf(file);
    if (depth == PictureDepth::Default) depth = suffix.depths[0];
    if (std::find(suffix.depths.begin(), suffix.depths.end(), depth) == suffix.depths.end()) {
        throw std::invalid_argument(fmt::format("{}: the depth of a {} file is {}", file.string(),
                                                suffix.text, suffix.depthNames));
    }
    return {suffix.kind, depth, alpha};
}

void writePicture(const Picture& picture, const fs::path& file, const PictureFormat& format) {
    if (format.kind == PictureFormat::Kind::Png) {
        writeWholeFile(file,
                       encodePng(picture, format.depth == PictureDepth::Sixteen, format.alpha));
    } else {
        writeWholeFile(file, encodeExr(picture, format.depth == PictureDepth::Float, format.alpha));
    }
}

void checkWritable(const fs::path& file) {
    const AtomicFile trial(file);
}

}  // namespace tavora::studio
