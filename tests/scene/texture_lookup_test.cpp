// Looking images up: wrapping, filters, averaging over a footprint, transforms.

#include "studio/scene/image/texture_lookup.h"

#include <cmath>
#include <gtest/gtest.h>

#include "studio/util/color.h"

namespace tavora::studio {
namespace {

using Imath::V2d;
using Imath::V4d;

Image grayImage(int width, int height, const std::vector<int>& values) {
    Image image;
    image.width = width;
    image.height = height;
    for (int v : values) {
        const auto byte = static_cast<std::uint8_t>(v);
        image.rgba.insert(image.rgba.end(), {byte, byte, byte, byte});
    }
    return image;
}

TextureUse plain(Filter filter, Wrap wrap = Wrap::Repeat) {
    TextureUse use;
    use.magnify = use.minify = filter;
    use.wrapS = use.wrapT = wrap;
    return use;
}

double red(const TexturePyramid& pyramid, const TextureUse& use, V2d uv, double footprint = 0) {
    return pyramid.lookUp(use, uv, footprint).x * 255.0;
}

TEST(TextureLookup, RowsRunDownwardsAndTexelsHaveTheirCentres) {
    const Image image = grayImage(2, 2, {10, 20, 30, 40});
    const TexturePyramid pyramid(image);
    EXPECT_NEAR(red(pyramid, plain(Filter::Nearest), {0.75, 0.25}), 20, 1e-9);
    EXPECT_NEAR(red(pyramid, plain(Filter::Nearest), {0.25, 0.75}), 30, 1e-9);
    EXPECT_NEAR(red(pyramid, plain(Filter::Linear), {0.75, 0.75}), 40, 1e-9);
    EXPECT_NEAR(red(pyramid, plain(Filter::Linear), {0.5, 0.5}), 25, 1e-9);
}

TEST(TextureLookup, WrapsOnBothSides) {
    const Image image = grayImage(4, 1, {10, 20, 30, 40});
    const TexturePyramid pyramid(image);
    struct Case {
        Wrap wrap;
        double u;
        double value;
    };
    const Case cases[] = {
        {Wrap::Repeat, -0.125, 40},        {Wrap::Repeat, 1.125, 10},
        {Wrap::Repeat, -1.125, 40},        {Wrap::MirroredRepeat, -0.125, 10},
        {Wrap::MirroredRepeat, 1.125, 40}, {Wrap::MirroredRepeat, 1.875, 10},
        {Wrap::MirroredRepeat, 2.375, 20}, {Wrap::ClampToEdge, -7, 10},
        {Wrap::ClampToEdge, 7, 40},
    };
    for (const Case& c : cases) {
        EXPECT_NEAR(red(pyramid, plain(Filter::Nearest, c.wrap), {c.u, 0.5}), c.value, 1e-9)
            << static_cast<int>(c.wrap) << " at " << c.u;
    }
    // Half a texel over the edge, filtered: between the neighbours that wrapping gives.
    EXPECT_NEAR(red(pyramid, plain(Filter::Linear), {0, 0.5}), 25, 1e-9);
    EXPECT_NEAR(red(pyramid, plain(Filter::Linear, Wrap::ClampToEdge), {0, 0.5}), 10, 1e-9);
}

TEST(TextureLookup, WildCoordinatesStayInside) {
    const Image image = grayImage(3, 1, {10, 20, 30});
    const TexturePyramid pyramid(image);
    for (double wild : {1e300, -1e300, std::nan(""), 1e9 + 0.5, HUGE_VAL}) {
        const double value = red(pyramid, plain(Filter::Linear), {wild, wild}, 0.5);
        EXPECT_TRUE(value >= 10 && value <= 30) << wild;
    }
    EXPECT_GE(red(pyramid, plain(Filter::Linear), {0.5, 0.5}, std::nan("")), 10);
}

TEST(TextureLookup, AveragesInLinearLight) {
    const Image checker = grayImage(2, 2, {0, 255, 255, 0});
    const TexturePyramid pyramid(checker);
    const V4d all = pyramid.lookUp(plain(Filter::Linear), {0.3, 0.8}, 4.0);
    EXPECT_NEAR(all.x, toEncoded(0.5), 0.5 / 255);  // half the light, not half the code
    EXPECT_NEAR(all.w, 0.5, 0.51 / 255);            // alpha is no light
    // Between two levels it goes smoothly.
    const double half = pyramid.lookUp(plain(Filter::Linear), {0.25, 0.25}, 1.0 / std::sqrt(2)).x;
    EXPECT_NEAR(half, toEncoded(0.5) / 2, 1.0 / 255);
    const Image numbers = grayImage(2, 1, {40, 200});
    EXPECT_NEAR(red(TexturePyramid(numbers, true), plain(Filter::Linear), {0, 0}, 1), 120, 1e-9)
        << "data is averaged as it is";
}

TEST(TextureLookup, OddSizesLeaveNoTexelOutAndKeepOneColour) {
    // The last texel of three counts as much as the others.
    const Image three = grayImage(3, 1, {0, 0, 255});
    EXPECT_NEAR(red(TexturePyramid(three), plain(Filter::Linear), {0.5, 0.5}, 8),
                255 * toEncoded(1.0 / 3), 1);
    for (int value = 0; value < 256; value += 5) {
        const Image image = grayImage(7, 5, std::vector<int>(35, value));
        EXPECT_NEAR(red(TexturePyramid(image), plain(Filter::Linear), {0.4, 0.4}, 1.0), value,
                    1e-9);
    }
    // Of five, the middle one is shared by two.
    const Image five = grayImage(5, 1, {0, 0, 255, 0, 0});
    const TexturePyramid pyramid(five);
    for (double u : {0.25, 0.75}) {
        EXPECT_NEAR(red(pyramid, plain(Filter::Nearest), {u, 0.5}, 2.0 / 5), 255 * toEncoded(0.2),
                    1);
    }
}

TEST(TextureLookup, FiltersAreThoseOfTheSampler) {
    const Image image = grayImage(2, 1, {0, 200});
    const TexturePyramid pyramid(image);
    TextureUse use = plain(Filter::Nearest);
    use.minify = Filter::Linear;
    use.mipmaps = false;
    const V2d uv(0.5 + 1e-9, 0.5);
    EXPECT_NEAR(red(pyramid, use, uv, 0.1), 200, 1e-6);  // a texel covers much: magnified
    EXPECT_NEAR(red(pyramid, use, uv, 0.9), 100, 1e-6);  // minified without averaging
    use.mipmaps = true;
    EXPECT_NEAR(red(pyramid, use, uv, 2), 255 * toEncoded(toLinear(200 / 255.0) / 2), 1);
}

TEST(TextureLookup, TransformScalesThenTurnsThenMoves) {
    TextureUse use;
    use.scale = {2, 3};
    use.offset = {0.5F, 0.25F};
    EXPECT_EQ(transformUv(use, {1, 1}), V2d(2.5, 3.25));
    // A quarter turn counter-clockwise as seen in the picture, where v grows down.
    use.rotation = 1.57079632679F;
    const V2d turned = transformUv(use, {1, 0});
    EXPECT_NEAR(turned.x, 0.5, 1e-6);
    EXPECT_NEAR(turned.y, 0.25 - 2, 1e-6);
    EXPECT_NEAR(transformUv(use, {0, 1}).x, 0.5 + 3, 1e-6);
}

}  // namespace
}  // namespace tavora::studio
