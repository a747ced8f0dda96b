#include "studio/render/picture_file.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfInputFile.h>
#include <ImfStandardAttributes.h>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <png.h>
#include <stdexcept>

#include "studio/util/color.h"
#include "studio/util/error.h"
#include "tests/files/temporary_folder.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;
using Kind = PictureFormat::Kind;

Picture pictureOf(std::vector<float> rgba, int width, int height) {
    return {width, height, {0, 0, width, height}, std::move(rgba)};
}

float linear(double encoded) {
    return static_cast<float>(toLinear(encoded));
}

struct Png {
    png_uint_32 height = 0;
    int bits = 0;
    int channels = 0;
    bool saysSrgb = false;
    bool hasTime = false;
    std::vector<unsigned> values;
};

Png readPng(const fs::path& file) {
    std::FILE* in = std::fopen(file.c_str(), "rb");
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, in);
    png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    Png result;
    result.height = png_get_image_height(png, info);
    result.bits = png_get_bit_depth(png, info);
    result.channels = png_get_channels(png, info);
    result.saysSrgb = png_get_valid(png, info, PNG_INFO_sRGB) != 0;
    result.hasTime = png_get_valid(png, info, PNG_INFO_tIME) != 0;
    const png_bytepp rows = png_get_rows(png, info);
    const std::size_t step = static_cast<std::size_t>(result.bits) / 8;
    for (png_uint_32 y = 0; y < result.height; ++y) {
        for (std::size_t at = 0; at < png_get_rowbytes(png, info); at += step)
            result.values.push_back(step == 2 ? rows[y][at] * 256U + rows[y][at + 1] : rows[y][at]);
    }
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(in);
    return result;
}

std::vector<float> readExr(Imf::InputFile& file, const std::vector<const char*>& channels) {
    const Imath::Box2i window = file.header().dataWindow();
    const auto width = static_cast<std::size_t>(window.max.x - window.min.x + 1);
    const auto height = static_cast<std::size_t>(window.max.y - window.min.y + 1);
    std::vector<float> values(width * height * channels.size());
    Imf::FrameBuffer frame;
    const std::size_t step = channels.size() * sizeof(float);
    for (std::size_t i = 0; i < channels.size(); ++i) {
        frame.insert(channels[i],
                     Imf::Slice::Make(Imf::FLOAT, &values[i], window, step, step * width));
    }
    file.setFrameBuffer(frame);
    file.readPixels(window.min.y, window.max.y);
    return values;
}

TEST(PictureFile, EveryDisplayValueComesOutOfAPngAsItself) {
    const TemporaryFolder folder;
    std::vector<float> rgba;
    for (int i = 0; i < 256; ++i) {
        rgba.insert(rgba.end(), {linear(i / 255.0), linear((255 - i) / 255.0), linear(0.5), 1});
    }
    const Picture picture = pictureOf(rgba, 256, 1);
    for (const auto& [depth, step] :
         {std::pair{PictureDepth::Eight, 1U}, {PictureDepth::Sixteen, 257U}}) {
        writePicture(picture, folder / "a.png", {Kind::Png, depth, false});
        const Png png = readPng(folder / "a.png");
        EXPECT_EQ(png.channels, 3);
        EXPECT_TRUE(png.saysSrgb);
        EXPECT_FALSE(png.hasTime);
        for (unsigned i = 0; i < 256; ++i) {
            EXPECT_EQ(png.values[i * 3], i * step);
            EXPECT_EQ(png.values[i * 3 + 1], (255 - i) * step);
        }
        EXPECT_EQ(png.values[2], step == 1 ? 128U : 32768U);
    }
}

TEST(PictureFile, PngDividesColourByAlphaBoundsValuesAndHoldsTheWindowAlone) {
    const TemporaryFolder folder;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Picture picture{
        10,
        10,
        {4, 6, 7, 7},
        {linear(128 / 255.0) / 2, 0, 0, 0.5F, 0.3F, 0.3F, 0.3F, 0, nan, -1, 7, 2}};
    writePicture(picture, folder / "a.png", {Kind::Png, PictureDepth::Eight, true});
    const Png png = readPng(folder / "a.png");
    EXPECT_EQ(png.height, 1U);
    EXPECT_EQ(png.values, (std::vector<unsigned>{128, 0, 0, 128, 0, 0, 0, 0, 0, 0, 255, 255}));
}

/// By how many steps of 255 a straight pixel, laid over a background in linear light,
/// shows something else than `color`, premultiplied, with that alpha.
double errorOver(double background, const unsigned* pixel, double color, double alpha) {
    const double covered = pixel[3] / 255.0;
    const double is = toLinear(pixel[0] / 255.0) * covered + (1 - covered) * background;
    return 255 * std::abs(toEncoded(is) - toEncoded(color + (1 - alpha) * background));
}

TEST(PictureFile, PngOfBytesLaidOverAnythingShowsWhatItShould) {
    const TemporaryFolder folder;
    std::vector<float> rgba;
    for (int covered = 1; covered < 1000; ++covered) {
        for (const double level : {0.0, 0.1, 0.25, 0.5, 0.75, 1.0}) {
            const auto alpha = static_cast<float>(covered / 1000.0);
            const float color = linear(level) * alpha;
            rgba.insert(rgba.end(), {color, color, color, alpha});
        }
    }
    const int count = static_cast<int>(rgba.size()) / 4;
    writePicture(pictureOf(rgba, count, 1), folder / "a.png",
                 {Kind::Png, PictureDepth::Eight, true});
    const std::vector<unsigned> values = readPng(folder / "a.png").values;
    for (std::size_t i = 0; i < rgba.size(); i += 4) {
        const auto color = static_cast<double>(rgba[i]);
        const auto alpha = static_cast<double>(rgba[i + 3]);
        // Where next to nothing shows through next to black, bytes say no better.
        const double bound = color + 1 - alpha < 0.06 ? 3.7 : 1;
        for (const double background : {0.0, 0.01, 0.2, 0.6, 1.0}) {
            ASSERT_LE(errorOver(background, &values[i], color, alpha), bound)
                << color << ' ' << alpha << ' ' << background;
        }
    }
}

TEST(PictureFile, ExrKeepsLinearValuesAndWindows) {
    const TemporaryFolder folder;
    const Picture picture{
        10, 8, {4, 6, 6, 8}, {0.1F, 2, -1, 0.5F, 1e6F, 0.25F, 3, 1, 5, 6, 7, 8, 9, 10, 11, 12}};
    writePicture(picture, folder / "f.exr", {Kind::Exr, PictureDepth::Float, true});
    Imf::InputFile whole((folder / "f.exr").c_str());
    EXPECT_EQ(whole.header().displayWindow(), Imath::Box2i({0, 0}, {9, 7}));
    EXPECT_EQ(whole.header().dataWindow(), Imath::Box2i({4, 6}, {5, 7}));
    EXPECT_TRUE(Imf::hasChromaticities(whole.header()));
    EXPECT_EQ(whole.header().find("capDate"), whole.header().end());
    EXPECT_EQ(readExr(whole, {"R", "G", "B", "A"}), picture.rgba);

    writePicture(picture, folder / "h.exr", {Kind::Exr, PictureDepth::Half, false});
    Imf::InputFile halves((folder / "h.exr").c_str());
    EXPECT_EQ(halves.header().channels().findChannel("A"), nullptr);
    EXPECT_EQ(halves.header().channels()["R"].type, Imf::HALF);
    const std::vector<float> values = readExr(halves, {"R", "G", "B"});
    EXPECT_EQ(values[0], static_cast<float>(half(0.1F)));
    EXPECT_EQ(values[3], HALF_MAX);
}

TEST(PictureFile, NothingIsLeftWhereItCannotBeWritten) {
    const TemporaryFolder folder;
    const Picture picture = pictureOf(std::vector<float>(4, 0), 1, 1);
    fs::create_directory(folder / "a.png");
    EXPECT_THROW(writePicture(picture, folder / "a.png", {}), Error);
    EXPECT_THROW(checkWritable(folder / "none/a.png"), Error);
    checkWritable(folder / "b.png");
    EXPECT_EQ(folder.names(), std::set<std::string>{"a.png"});
}

TEST(PictureFile, SuffixAndDepthGoTogether) {
    EXPECT_EQ(pictureFormat("a.PNG", PictureDepth::Default, false).depth, PictureDepth::Eight);
    EXPECT_EQ(pictureFormat("a.exr", PictureDepth::Default, false).depth, PictureDepth::Half);
    EXPECT_TRUE(pictureFormat("a.exr", PictureDepth::Float, true).alpha);
    EXPECT_THROW(pictureFormat("a.png", PictureDepth::Half, false), std::invalid_argument);
    EXPECT_THROW(pictureFormat("a.exr", PictureDepth::Sixteen, false), std::invalid_argument);
    EXPECT_THROW(pictureFormat("a.jpg", PictureDepth::Default, false), std::invalid_argument);
    EXPECT_THROW(pictureFormat("png", PictureDepth::Default, false), std::invalid_argument);
}

}  // namespace
}  // namespace tavora::studio
