#include "studio/render/png_encode.h"

#include <csetjmp>
#include <cstdint>
#include <new>
#include <png.h>
#include <stdexcept>
#include <vector>

#include "studio/render/display_levels.h"

namespace tavora::studio {
namespace {

struct Layout {
    int channels;
    int bits;

    std::size_t pixelBytes() const { return static_cast<std::size_t>(channels * bits / 8); }
};

std::uint8_t* put(std::uint8_t* to, unsigned value, int bits) {
    if (bits == 16) *to++ = static_cast<std::uint8_t>(value >> 8);
    *to++ = static_cast<std::uint8_t>(value & 0xffU);
    return to;
}

void putPixel(std::uint8_t* to, const float* rgba, const Layout& layout) {
    unsigned levels[4];
    displayLevels(rgba, layout.channels == 4, layout.bits == 8 ? 255 : 65535, levels);
    for (int i = 0; i < layout.channels; ++i)
        to = put(to, levels[i], layout.bits);
}

std::vector<std::uint8_t> quantizedPixels(const Picture& picture, const Layout& layout) {
    const std::size_t count = picture.rgba.size() / 4;
    std::vector<std::uint8_t> bytes(count * layout.pixelBytes());
    for (std::size_t i = 0; i < count; ++i) {
        putPixel(&bytes[i * layout.pixelBytes()], &picture.rgba[i * 4], layout);
    }
    return bytes;
}

/// What the C library works with while it may jump out: nothing here needs a
/// destructor that the jump would skip.
struct Encoder {
    png_structp png = nullptr;
    png_infop info = nullptr;
    std::string* bytes = nullptr;
    bool outOfMemory = false;
};

void append(png_structp png, png_bytep data, png_size_t size) {
    auto* encoder = static_cast<Encoder*>(png_get_io_ptr(png));
    try {
        encoder->bytes->append(reinterpret_cast<const char*>(data), size);
    } catch (...) {
        encoder->outOfMemory = true;
    }
    if (encoder->outOfMemory) png_error(png, "out of memory");
}

void flush(png_structp) {}

[[noreturn]] void fail(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}

void ignoreWarning(png_structp, png_const_charp) {}

bool encode(Encoder& encoder, const Picture& picture, const Layout& layout,
            const std::uint8_t* pixels) {
    if (setjmp(png_jmpbuf(encoder.png)) != 0) return false;
    const auto width = static_cast<png_uint_32>(picture.window.width());
    const auto height = static_cast<png_uint_32>(picture.window.height());
    png_set_write_fn(encoder.png, &encoder, append, flush);
    png_set_user_limits(encoder.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(encoder.png, encoder.info, width, height, layout.bits,
                 layout.channels == 4 ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_sRGB_gAMA_and_cHRM(encoder.png, encoder.info, PNG_sRGB_INTENT_PERCEPTUAL);
    png_write_info(encoder.png, encoder.info);
    const std::size_t rowBytes = width * layout.pixelBytes();
    for (std::size_t row = 0; row < height; ++row) {
        png_write_row(encoder.png, pixels + row * rowBytes);
    }
    png_write_end(encoder.png, nullptr);
    return true;
}

}  // namespace

std::string encodePng(const Picture& picture, bool sixteenBits, bool alpha) {
    const Layout layout{alpha ? 4 : 3, sixteenBits ? 16 : 8};
    const std::vector<std::uint8_t> pixels = quantizedPixels(picture, layout);
    std::string bytes;
    Encoder encoder;
    encoder.bytes = &bytes;
    encoder.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, fail, ignoreWarning);
    encoder.info = encoder.png != nullptr ? png_create_info_struct(encoder.png) : nullptr;
    const bool done = encoder.info != nullptr && encode(encoder, picture, layout, pixels.data());
    if (encoder.png != nullptr) png_destroy_write_struct(&encoder.png, &encoder.info);
    if (!done) throw std::bad_alloc();
    return bytes;
}

}  // namespace tavora::studio
