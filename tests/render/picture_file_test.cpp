#include "studio/render/image/picture_file.h"

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
    int channels = 0;
    bool saysSrgb = false;
    bool hasTime = false;
    std::vector<unsigned> values;

    explicit Png(const fs::path& file) {
        std::FILE* in = std::fopen(file.c_str(), "rb");
        png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        png_init_io(png, in);
        png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
        height = png_get_image_height(png, info);
        channels = png_get_channels(png, info);
        saysSrgb = png_get_valid(png, info, PNG_INFO_sRGB) != 0;
        hasTime = png_get_valid(png, info, PNG_INFO_tIME) != 0;
        const bool wide = png_get_bit_depth(png, info) == 16;
        for (png_uint_32 y = 0; y < height; ++y) {
            png_bytep at = png_get_rows(png, info)[y];
            for (const png_bytep end = at + png_get_rowbytes(png, info); at < end; ++at) {
                values.push_back(*at);
                if (wide) values.back() = values.back() * 256U + *++at;
            }
        }
        png_destroy_read_struct(&png, &info, nullptr);
        std::fclose(in);
    }
};

std::vector<float> readExr(Imf::InputFile& file, const std::vector<const char*>& channels) {
    const Imath::Box2i window = file.header().dataWindow();
    const Imath::V2i size = window.size() + Imath::V2i(1);
    std::vector<float> values(static_cast<std::size_t>(size.x * size.y) * channels.size());
    Imf::FrameBuffer frame;
    const std::size_t step = channels.size() * sizeof(float);
    for (std::size_t i = 0; i < channels.size(); ++i) {
        frame.insert(channels[i], Imf::Slice::Make(Imf::FLOAT, &values[i], window, step,
                                                   step * static_cast<std::size_t>(size.x)));
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
        const Png png(folder / "a.png");
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
    const Png png(folder / "a.png");
    EXPECT_EQ(png.height, 1U);
    EXPECT_EQ(png.values, (std::vector<unsigned>{128, 0, 0, 128, 0, 0, 0, 0, 0, 0, 255, 255}));
}

TEST(PictureFile, PngOfBytesLaidOverAnythingShowsWhatItShould) {
    const TemporaryFolder folder;
    std::vector<float> rgba;
    for (int covered = 1; covered < 1000; ++covered) {
        for (const double level : {0.0, 0.1, 0.25, 0.5, 0.75, 1.0}) {
            const auto alpha = static_cast<float>(covered / 1000.0);
            rgba.resize(rgba.size() + 3, linear(level) * alpha);
            rgba.push_back(alpha);
        }
    }
    writePicture(pictureOf(rgba, static_cast<int>(rgba.size()) / 4, 1), folder / "a.png",
                 {Kind::Png, PictureDepth::Eight, true});
    const std::vector<unsigned> values = Png(folder / "a.png").values;
    for (std::size_t i = 0; i < rgba.size(); i += 4) {
        const auto color = static_cast<double>(rgba[i]);
        const double through = 1 - static_cast<double>(rgba[i + 3]);
        const double shown = toLinear(values[i] / 255.0) * values[i + 3] / 255.0;
        // Where next to nothing shows through next to black, bytes say no better.
        const double bound = color + through < 0.06 ? 3.7 : 1;
        for (const double behind : {0.0, 0.01, 0.2, 0.6, 1.0}) {
            const double is = toEncoded(shown + (1 - values[i + 3] / 255.0) * behind);
            ASSERT_LE(255 * std::abs(is - toEncoded(color + through * behind)), bound)
                << color << ' ' << through << ' ' << behind;
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
