// Picture files to pixels: values as they stand in the file, damage as one line.

#include <algorithm>
#include <array>
#include <gmock/gmock.h>
#include <png.h>
#include <zlib.h>

#include "studio/scene/gltf/uri.h"
#include "studio/scene/image/image_decoder.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

using ::testing::HasSubstr;
using Bytes = std::vector<std::uint8_t>;

struct PngOptions {
    int depth = 8;
    int colorType = PNG_COLOR_TYPE_RGBA;
    int interlace = PNG_INTERLACE_NONE;
    double gamma = 0;  ///< 0: says nothing of it
    std::vector<png_color> palette = {};
    Bytes clear = {};  ///< alpha of the palette's colours
};

void append(png_structp png, png_bytep data, std::size_t size) {
    auto* out = static_cast<Bytes*>(png_get_io_ptr(png));
    out->insert(out->end(), data, data + size);
}

Bytes pngOf(unsigned width, unsigned height, const Bytes& pixels, const PngOptions& options = {}) {
    Bytes out;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &out, append, nullptr);
    png_set_IHDR(png, info, width, height, options.depth, options.colorType, options.interlace,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (options.gamma != 0) png_set_gAMA(png, info, options.gamma);
    if (!options.palette.empty()) {
        png_set_PLTE(png, info, options.palette.data(), static_cast<int>(options.palette.size()));
        png_set_tRNS(png, info, options.clear.data(), static_cast<int>(options.clear.size()),
                     nullptr);
    }
    png_write_info(png, info);
    std::vector<png_bytep> rows(height);
    const std::size_t row = pixels.size() / height;
    for (unsigned y = 0; y < height; ++y)
        rows[y] = const_cast<png_bytep>(pixels.data() + y * row);
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return out;
}

/// 17 x 9 pixels, the left 8 columns of one colour.
const Bytes kJpeg = *dataOfUri(
    "data:image/jpeg;base64,/9j/4AAQSkZJRgABAQAAAQABAAD/2wBDAA0JCgsKCA0LCgsODg0PEyAVExISEyccHhc"
    "gLikxMC4pLSwzOko+MzZGNywtQFdBRkxOUlNSMj5aYVpQYEpRUk//2wBDAQ4ODhMREyYVFSZPNS01T09PT09PT09PT"
    "09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT0//wAARCAAJABEDAREAAhEBAxEB/8QAFwAAAwE"
    "AAAAAAAAAAAAAAAAAAgQFBv/EACMQAAEDAgUFAAAAAAAAAAAAAAEAAgMFIQQRExUxNVOBkrH/xAAXAQEBAQEAAAAAA"
    "AAAAAAAAAAFAwIG/8QAHxEAAgIBBAMAAAAAAAAAAAAAAAECAxEEEiFSBTSh/9oADAMBAAIRAxEAPwAUOPk99SlZVGM"
    "il0i0EEZ2cBbhKUqcopQ5eAaVTjZJwfOWylvUnci9lXbrOjJ7buv0FDDpjsf16Tz9S/jg6v2ZDq7Q2f/Z");
/// 2 x 2 pixels without loss.
const Bytes kWebp = *dataOfUri(
    "data:image/webp;base64,UklGRj4AAABXRUJQVlA4TDIAAAAvAUAAEB+gIG0DFu5rnpAEAZP/zxolG6Ao/P+vTUB"
    "CyHHTBWZR5nwPSgIEQFFGIvofAw==");

std::string refusal(const Bytes& file) {
    try {
        decodeImage(file, "picture");
    } catch (const Error& error) {
        return error.what();
    }
    return "";
}

const Bytes kFour = {255, 0, 0, 255, 0, 128, 0, 128, 1, 2, 3, 0, 200, 100, 50, 255};

TEST(TextureImage, ValuesAreThoseOfTheFile) {
    EXPECT_EQ(decodeImage(pngOf(2, 2, kFour), "a").rgba, kFour);
    EXPECT_EQ(decodeImage(kWebp, "a").rgba,
              (Bytes{255, 0, 0, 255, 0, 128, 0, 128, 1, 2, 3, 255, 9, 8, 7, 1}));
    const Image jpeg = decodeImage(kJpeg, "a");
    ASSERT_EQ(jpeg.width, 17);
    ASSERT_EQ(jpeg.rgba.size(), 17U * 9 * 4);
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_EQ(Bytes(&jpeg.rgba[4 * i], &jpeg.rgba[4 * i + 4]), (Bytes{201, 101, 51, 255}));
}

TEST(TextureImage, EveryKindOfPngBecomesRgbaWhateverItsGamma) {
    Bytes many;
    for (int i = 0; i < 13 * 11 * 4; ++i)
        many.push_back(static_cast<std::uint8_t>(i * 7));
    const Bytes wide = {0x80, 0x80, 0x40, 0x40, 0x01, 0x01};
    const PngOptions gray{.colorType = PNG_COLOR_TYPE_GRAY};
    const PngOptions bits{.depth = 1, .colorType = PNG_COLOR_TYPE_GRAY};
    const PngOptions palette{
        .colorType = PNG_COLOR_TYPE_PALETTE, .palette = {{1, 2, 3}, {4, 5, 6}}, .clear = {9}};
    const PngOptions deep{.depth = 16, .colorType = PNG_COLOR_TYPE_RGB};
    const PngOptions deepLinear{.depth = 16, .colorType = PNG_COLOR_TYPE_RGB, .gamma = 1};
    const std::pair<Bytes, Bytes> cases[] = {
        {pngOf(2, 2, kFour, {.gamma = 1.0}), kFour},
        {pngOf(1, 1, wide, deep), {0x80, 0x40, 1, 255}},
        {pngOf(1, 1, wide, deepLinear), {0x80, 0x40, 1, 255}},
        {pngOf(1, 1, {7}, gray), {7, 7, 7, 255}},
        {pngOf(2, 1, {0x40}, bits), {0, 0, 0, 255, 255, 255, 255, 255}},
        {pngOf(2, 1, {0, 1}, palette), {1, 2, 3, 9, 4, 5, 6, 255}},
        {pngOf(13, 11, many, {.interlace = PNG_INTERLACE_ADAM7}), many}};
    for (const auto& [png, rgba] : cases)
        EXPECT_EQ(decodeImage(png, "a").rgba, rgba);
}

TEST(TextureImage, EveryPrefixIsRefusedAndDamageInsideWhereItCanBeSeen) {
    for (const Bytes& file : {pngOf(2, 2, kFour), kJpeg, kWebp}) {
        for (std::size_t size = 0; size < file.size(); ++size) {
            const Bytes prefix(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_NE(refusal(prefix), "") << size << " of " << file.size();
        }
    }
    Bytes png = pngOf(2, 2, kFour);
    png[png.size() - 20] ^= 0xffU;  // in the compressed pixels: their checksum fails
    EXPECT_THAT(refusal(png), HasSubstr("is a damaged PNG ("));
    Bytes jpeg = kJpeg;
    jpeg.resize(jpeg.size() - 12);
    jpeg.insert(jpeg.end(), {0xff, 0xd9});
    EXPECT_THAT(refusal(jpeg), HasSubstr("is a damaged JPEG ("));
    EXPECT_EQ(refusal({'G', 'I', 'F', '8'}), "is neither PNG, JPEG nor WebP");
}

Bytes::iterator markerIn(Bytes& jpeg, std::uint8_t marker) {
    const std::uint8_t bytes[] = {0xff, marker};
    return std::search(jpeg.begin(), jpeg.end(), std::begin(bytes), std::end(bytes));
}

/// The checksum of a PNG chunk at `start` (its type) of `size` bytes, mended.
void mendChecksum(Bytes& png, std::size_t start, std::size_t size) {
    const auto crc = ::crc32(0, &png[start], static_cast<unsigned>(size));
    for (std::size_t i = 0; i < 4; ++i)
        png[start + size + i] = static_cast<std::uint8_t>(crc >> (24 - 8 * i));
}

TEST(TextureImage, WildSizesAreRefusedBeforeMemoryIsAsked) {
    Bytes png = pngOf(2, 2, kFour);
    const std::array<std::uint8_t, 8> sizes = {0, 0, 0xff, 0xff, 0, 0, 0xff, 0xff};
    std::copy(sizes.begin(), sizes.end(), png.begin() + 16);
    mendChecksum(png, 12, 17);
    EXPECT_THAT(refusal(png), HasSubstr("claims 65535 x 65535 pixels"));
    png[17] = 1;  // 131071 wide: beyond what the library is told to take
    mendChecksum(png, 12, 17);
    EXPECT_THAT(refusal(png), HasSubstr("is a damaged PNG"));

    Bytes jpeg = kJpeg;
    std::fill_n(markerIn(jpeg, 0xc0) + 5, 4, std::uint8_t{0xfd});
    EXPECT_THAT(refusal(jpeg), HasSubstr("claims 65021 x 65021 pixels"));
    // A stray byte between two markers, as old cameras write it, is forgiven.
    jpeg = kJpeg;
    jpeg.insert(markerIn(jpeg, 0xdb), {0x00, 0x11});
    EXPECT_EQ(refusal(jpeg), "");
}

}  // namespace
}  // namespace tavora::studio
