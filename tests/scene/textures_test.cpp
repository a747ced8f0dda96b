// Picture files to pixels, and looking these up.

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include "studio/scene/image/image_decoder.h"
#include "studio/scene/image/texture_lookup.h"
#include "studio/util/color.h"
#include "tests/files/temporary_folder.h"
#include "tests/support/refusal.h"

namespace tavora::studio {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Imath::V2d, Imath::V4d;
using testing::HasSubstr;

Bytes fileOf(const std::string& name) {
    const std::string bytes = bytesOf(TEST_INPUTS "/image/" + name);
    EXPECT_FALSE(bytes.empty()) << name;
    return {bytes.begin(), bytes.end()};
}

Image decoded(const Bytes& file, std::uint64_t memory = std::uint64_t{1} << 40) {
    MemoryBudget budget("scene", memory);
    Image image = decodeImage(file, "picture", budget);
    EXPECT_EQ(budget.taken(), image.rgba.size());
    return image;
}

std::string refused(const Bytes& file) {
    MemoryBudget budget("scene", std::uint64_t{1} << 40);
    const std::string says = refusal([&] { decodeImage(file, "picture", budget); });
    EXPECT_EQ(budget.taken() > 0, says.empty());
    return says;
}

TEST(TextureImage, ValuesAreThoseOfTheFile) {
    // Checksums of the values, taken apart by hand.
    for (const auto& [name, sum] : {std::pair{"bits.png", 0xa42700b3U},
                                    {"gray-alpha.png", 0x35096f7aU},
                                    {"gray.png", 0x35096f7aU},
                                    {"gray16.png", 0x0b6bbc67U},
                                    {"interlaced16.png", 0xb21cc08bU},
                                    {"palette.png", 0xaa48caadU},
                                    {"rgb.png", 0xb21cc08bU}}) {
        const Bytes rgba = decoded(fileOf(name)).rgba;
        EXPECT_EQ(::crc32(0, rgba.data(), static_cast<unsigned>(rgba.size())), sum) << name;
    }
    EXPECT_EQ(decoded(fileOf("half-clear.webp")).rgba,
              (Bytes{255, 0, 0, 255, 0, 128, 0, 128, 1, 2, 3, 255, 9, 8, 7, 1}));
    // The first of two pictures, the other blue.
    EXPECT_EQ(decoded(fileOf("animated.webp")).rgba,
              (Bytes{200, 30, 10, 255, 200, 30, 10, 255, 200, 30, 10, 255, 0, 0, 0, 0}));
    // Half black under magenta and yellow; cyan. As Adobe stores inks.
    const Bytes inks = decoded(fileOf("cmyk.jpg")).rgba;
    EXPECT_EQ(Bytes(&inks[0], &inks[4]), (Bytes{127, 0, 0, 255}));
    EXPECT_EQ(Bytes(&inks[8 * 8 * 4], &inks[8 * 8 * 4 + 4]), (Bytes{0, 255, 255, 255}));
    const Image jpeg = decoded(fileOf("one-colour-left.jpg"));
    ASSERT_TRUE(jpeg.width == 17 && jpeg.rgba.size() == 17U * 9 * 4);
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_EQ(Bytes(&jpeg.rgba[4 * i], &jpeg.rgba[4 * i + 4]), (Bytes{201, 101, 51, 255}));
}

TEST(TextureImage, DamageAndWildSizesAreRefused) {
    for (const char* name : {"rgb.png", "one-colour-left.jpg", "half-clear.webp"}) {
        const Bytes file = fileOf(name);
        for (auto end = file.begin(); end != file.end(); ++end)
            EXPECT_NE(refused({file.begin(), end}), "") << name << end - file.begin();
    }
    Bytes png = fileOf("rgb.png");
    png[png.size() - 20] ^= 0xffU;  // in the compressed pixels: their checksum fails
    EXPECT_THAT(refused(png), HasSubstr("is a damaged PNG ("));
    png = fileOf("rgb.png");
    png[18] = png[22] = 0xfd;  // sides of 64777 and 64775
    const auto sum = ::crc32(0, &png[12], 17);
    for (std::size_t i = 0; i < 4; ++i)
        png[29 + i] = static_cast<std::uint8_t>(sum >> (24 - 8 * i));
    EXPECT_THAT(refused(png), HasSubstr("claims 64777 x 64775 pixels"));
    EXPECT_EQ(refused({'G', 'I', 'F', '8'}), "is neither PNG, JPEG nor WebP");

    const Bytes whole = fileOf("one-colour-left.jpg");
    Bytes jpeg = whole;
    jpeg.resize(jpeg.size() - 12);
    jpeg.insert(jpeg.end(), {0xff, 0xd9});
    EXPECT_THAT(refused(jpeg), HasSubstr("is a damaged JPEG ("));
    // Its first scan, over and over.
    jpeg = fileOf("progressive.jpg");
    const Bytes mark = {0xff, 0xda};
    const auto first = std::search(jpeg.begin(), jpeg.end(), mark.begin(), mark.end());
    const Bytes scan(first, std::find(first + 2, jpeg.end(), 0xff));
    const auto place = first - jpeg.begin();
    for (int times = 0; times < 500; ++times)
        jpeg.insert(jpeg.begin() + place, scan.begin(), scan.end());
    EXPECT_THAT(refused(jpeg), HasSubstr("it never ends"));
    // A stray byte between two markers, as old cameras write it, is forgiven.
    jpeg = whole;
    const std::uint8_t marker[] = {0xff, 0xdb};
    const auto at = std::search(jpeg.begin(), jpeg.end(), marker, std::end(marker));
    jpeg.insert(at, {0x00, 0x11});
    EXPECT_EQ(refused(jpeg), "");
}

Image grayImage(int width, const std::vector<int>& values) {
    Image image;
    image.width = width;
    image.height = static_cast<int>(values.size()) / width;
    for (const int v : values)
        image.rgba.insert(image.rgba.end(), 4, static_cast<std::uint8_t>(v));
    return image;
}

TextureUse plain(Filter filter, Wrap wrap = Wrap::Repeat) {
    TextureUse use;
    use.magnify = use.minify = filter;
    use.wrapS = use.wrapT = wrap;
    return use;
}

double red(const Image& image, const TextureUse& use, V2d uv, double footprint = 0) {
    return TexturePyramid(image).lookUp(use, uv, footprint).x * 255.0;
}

TEST(TextureLookup, RowsRunDownwardsAndWrapOnBothSides) {
    const Image two = grayImage(2, {10, 20, 30, 40}), four = grayImage(4, {10, 20, 30, 40});
    EXPECT_NEAR(red(two, plain(Filter::Nearest), {0.75, 0.25}), 20, 1e-9);
    EXPECT_NEAR(red(two, plain(Filter::Linear), {0.5, 0.5}), 25, 1e-9);
    using enum Wrap;
    const std::tuple<Wrap, double, double> cases[] = {
        {Repeat, -0.125, 40},         {Repeat, 1.125, 10},         {Repeat, -1.125, 40},
        {MirroredRepeat, -0.125, 10}, {MirroredRepeat, 1.125, 40}, {MirroredRepeat, 2.375, 20},
        {ClampToEdge, -7, 10},        {ClampToEdge, 7, 40}};
    for (const auto& [wrap, u, value] : cases)
        EXPECT_NEAR(red(four, plain(Filter::Nearest, wrap), {u, 0.5}), value, 1e-9) << u;
    // Half a texel over the edge: between the neighbours that wrapping gives.
    EXPECT_NEAR(red(four, plain(Filter::Linear), {0, 0.5}), 25, 1e-9);
    EXPECT_NEAR(red(four, plain(Filter::Linear, ClampToEdge), {0, 0.5}), 10, 1e-9);
    for (const double wild : {1e300, -1e300, std::nan(""), 1e9 + 0.5, HUGE_VAL})
        EXPECT_NEAR(red(four, plain(Filter::Linear), {wild, wild}, 0.5), 25, 15) << wild;
}

TEST(TextureLookup, AveragesInLinearLightAndLeavesNoTexelOut) {
    const Image squares = grayImage(2, {0, 255, 255, 0}), two = grayImage(2, {40, 200});
    const TexturePyramid checker(squares), numbers(two, true);
    const V4d all = checker.lookUp(plain(Filter::Linear), {0.3, 0.8}, 4.0);
    EXPECT_NEAR(all.x, toEncoded(0.5), 0.5 / 255);  // half the light, not half the code
    EXPECT_NEAR(all.w, 0.5, 0.51 / 255);            // alpha is no light
    // Between two levels it goes smoothly.
    const double half = checker.lookUp(plain(Filter::Linear), {0.25, 0.25}, 1.0 / std::sqrt(2)).x;
    EXPECT_NEAR(half, toEncoded(0.5) / 2, 1.0 / 255);
    EXPECT_NEAR(numbers.lookUp(plain(Filter::Linear), {0, 0}, 1).x * 255, 120, 1e-9)
        << "data is averaged as it is";
    // The last texel of three counts as much as the others; of five, the middle one
    // is shared by two.
    EXPECT_NEAR(red(grayImage(3, {0, 0, 255}), plain(Filter::Linear), {0.5, 0.5}, 8),
                255 * toEncoded(1.0 / 3), 1);
    for (const double u : {0.25, 0.75}) {
        EXPECT_NEAR(red(grayImage(5, {0, 0, 255, 0, 0}), plain(Filter::Nearest), {u, 0.5}, 0.4),
                    255 * toEncoded(0.2), 1);
    }
    for (int value = 0; value < 256; value += 5) {
        const Image image = grayImage(7, std::vector<int>(35, value));
        EXPECT_NEAR(red(image, plain(Filter::Linear), {0.4, 0.4}, 1.0), value, 1e-9);
    }
}

TEST(TextureLookup, FiltersAndTransformsAreThoseOfTheUse) {
    const Image image = grayImage(2, {0, 200});
    TextureUse use = plain(Filter::Nearest);
    use.minify = Filter::Linear;
    use.mipmaps = false;
    const V2d uv(0.5 + 1e-9, 0.5);
    EXPECT_NEAR(red(image, use, uv, 0.1), 200, 1e-6);  // a texel covers much: magnified
    EXPECT_NEAR(red(image, use, uv, 0.9), 100, 1e-6);  // minified without averaging
    use.mipmaps = true;
    EXPECT_NEAR(red(image, use, uv, 2), 255 * toEncoded(toLinear(200 / 255.0) / 2), 1);

    use.scale = {2, 3};
    use.offset = {0.5F, 0.25F};
    EXPECT_EQ(transformUv(use, {1, 1}), V2d(2.5, 3.25));
    // A quarter turn counter-clockwise as seen in the picture, where v grows down.
    use.rotation = 1.57079632679F;
    EXPECT_LT((transformUv(use, {1, 0}) - V2d(0.5, 0.25 - 2)).length(), 1e-6);
    EXPECT_LT((transformUv(use, {0, 1}) - V2d(0.5 + 3, 0.25)).length(), 1e-6);
}

}  // namespace
}  // namespace tavora::studio
