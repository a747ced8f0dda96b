#include "studio/scene/image/image_decoder.h"

#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <jpeglib.h>
#include <png.h>
#include <webp/decode.h>

// After jpeglib.h, which it needs.
#include <jerror.h>

#include "studio/util/error.h"

namespace tavora::studio {
namespace {

using Bytes = std::span<const std::uint8_t>;

// A picture may not unpack to more than this many pixels, nor to more than the
// strongest packing of its format can stand for.
constexpr std::uint64_t kMostSide = 65536;
constexpr std::uint64_t kMostPixels = 1U << 28;
constexpr std::uint64_t kMostPixelsPerByte = 20000;

using Text = std::array<char, 256>;

/// Makes room for the pixels and returns them. C libraries jump over their
/// callers, so nothing may be thrown here: null and a text instead.
std::uint8_t* makeRoom(Image& image, std::uint64_t width, std::uint64_t height, Bytes file,
                       Text& why) noexcept {
    const bool sane = width > 0 && height > 0 && width <= kMostSide && height <= kMostSide &&
                      width * height <= kMostPixels &&
                      width * height <= kMostPixelsPerByte * file.size();
    if (!sane) {
        std::snprintf(why.data(), why.size(), "it claims %llu x %llu pixels in %zu bytes",
                      static_cast<unsigned long long>(width),
                      static_cast<unsigned long long>(height), file.size());
        return nullptr;
    }
    try {
        image.width = static_cast<int>(width);
        image.height = static_cast<int>(height);
        image.rgba.resize(static_cast<std::size_t>(width * height * 4));
        return image.rgba.data();
    } catch (const std::exception&) {
        std::snprintf(why.data(), why.size(), "too little memory for it");
        return nullptr;
    }
}

[[noreturn]] void fail(const char* format, const Text& why) {
    throw Error(Fault::Scene, std::string("is a damaged ") + format + " (" + why.data() + ")");
}

// --- PNG ---

struct PngState {
    Bytes file;
    std::size_t at = 0;
    png_structp png = nullptr;
    png_infop info = nullptr;
    Text why{};
};

void pngFailed(png_structp png, png_const_charp text) {
    auto* state = static_cast<PngState*>(png_get_error_ptr(png));
    std::snprintf(state->why.data(), state->why.size(), "%s", text);
    png_longjmp(png, 1);
}

void pngWarned(png_structp /*png*/, png_const_charp /*text*/) {}

void pngRead(png_structp png, png_bytep to, std::size_t size) {
    auto* state = static_cast<PngState*>(png_get_io_ptr(png));
    if (size > state->file.size() - state->at) png_error(png, "it breaks off");
    std::memcpy(to, state->file.data() + state->at, size);
    state->at += size;
}

/// All kinds of PNG to 8-bit RGBA, values as they stand: what the file says of
/// gamma and colour profiles does not count for textures.
void askForRgba(PngState& state) {
    png_set_expand(state.png);
    png_set_scale_16(state.png);
    png_set_gray_to_rgb(state.png);
    png_set_add_alpha(state.png, 0xff, PNG_FILLER_AFTER);
    png_set_interlace_handling(state.png);
    png_read_update_info(state.png, state.info);
}

/// Only plain data lives here, since libpng's errors jump back into it.
bool runPng(PngState& state, Image& image) {
    if (setjmp(png_jmpbuf(state.png)) != 0) return false;
    png_set_read_fn(state.png, &state, pngRead);
    png_set_user_limits(state.png, kMostSide, kMostSide);
    png_set_keep_unknown_chunks(state.png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_read_info(state.png, state.info);
    std::uint8_t* pixels =
        makeRoom(image, png_get_image_width(state.png, state.info),
                 png_get_image_height(state.png, state.info), state.file, state.why);
    if (pixels == nullptr) return false;
    const bool interlaced = png_get_interlace_type(state.png, state.info) != PNG_INTERLACE_NONE;
    askForRgba(state);
    const std::size_t row = png_get_rowbytes(state.png, state.info);
    if (row != static_cast<std::size_t>(image.width) * 4) png_error(state.png, "odd pixels");
    for (int pass = 0; pass < (interlaced ? 7 : 1); ++pass) {
        for (int y = 0; y < image.height; ++y)
            png_read_row(state.png, pixels + static_cast<std::size_t>(y) * row, nullptr);
    }
    png_read_end(state.png, nullptr);
    return true;
}

void decodePng(Bytes file, Image& image) {
    PngState state;
    state.file = file;
    state.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &state, pngFailed, pngWarned);
    if (state.png != nullptr) state.info = png_create_info_struct(state.png);
    const bool good = state.info != nullptr && runPng(state, image);
    png_destroy_read_struct(&state.png, &state.info, nullptr);
    if (!good) fail("PNG", state.why);
}

// --- JPEG ---

// A picture in this many scans was not made to be looked at.
constexpr int kMostScans = 500;

struct JpegState {
    jpeg_error_mgr errors;
    jpeg_progress_mgr progress;
    std::jmp_buf back;
    Bytes file;
    Text why;
};

[[noreturn]] void jpegGiveUp(j_common_ptr info, const char* text) {
    auto* state = static_cast<JpegState*>(info->client_data);
    if (text != state->why.data()) std::snprintf(state->why.data(), state->why.size(), "%s", text);
    std::longjmp(state->back, 1);
}

void jpegFailed(j_common_ptr info) {
    char text[JMSG_LENGTH_MAX];
    info->err->format_message(info, text);
    jpegGiveUp(info, text);
}

/// Warnings that mean wrong pixels count as damage; others are forgiven, since
/// cameras and old programs write files that earn them.
void jpegMessage(j_common_ptr info, int level) {
    if (level >= 0) return;
    switch (info->err->msg_code) {
        case JWRN_JPEG_EOF:
            jpegGiveUp(info, "it breaks off");
        case JWRN_HIT_MARKER:
        case JWRN_HUFF_BAD_CODE:
        case JWRN_ARITH_BAD_CODE:
        case JWRN_MUST_RESYNC:
        case JWRN_NOT_SEQUENTIAL:
            jpegFailed(info);
        default:
            break;
    }
}

void jpegScanned(j_common_ptr info) {
    const auto* jpeg = reinterpret_cast<jpeg_decompress_struct*>(info);
    if (jpeg->input_scan_number > kMostScans) jpegGiveUp(info, "it never ends");
}

/// Only plain data lives here, since libjpeg's errors jump back into it.
bool runJpeg(jpeg_decompress_struct& jpeg, JpegState& state, Image& image) {
    if (setjmp(state.back) != 0) return false;
    jpeg_create_decompress(&jpeg);
    jpeg.progress = &state.progress;
    jpeg_mem_src(&jpeg, state.file.data(), static_cast<unsigned long>(state.file.size()));
    jpeg_read_header(&jpeg, TRUE);
    jpeg.out_color_space = JCS_EXT_RGBA;
    std::uint8_t* pixels =
        makeRoom(image, jpeg.image_width, jpeg.image_height, state.file, state.why);
    if (pixels == nullptr) return false;
    jpeg_start_decompress(&jpeg);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = pixels + std::size_t{jpeg.output_scanline} * jpeg.output_width * 4;
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    return true;
}

void decodeJpeg(Bytes file, Image& image) {
    JpegState state{};
    state.file = file;
    state.progress.progress_monitor = jpegScanned;
    jpeg_decompress_struct jpeg{};
    jpeg.err = jpeg_std_error(&state.errors);
    jpeg.client_data = &state;
    state.errors.error_exit = jpegFailed;
    state.errors.emit_message = jpegMessage;
    const bool good = runJpeg(jpeg, state, image);
    jpeg_destroy_decompress(&jpeg);
    if (!good) fail("JPEG", state.why);
}

// --- WebP ---

void decodeWebp(Bytes file, Image& image) {
    Text why{"it has no whole header"};
    int width = 0;
    int height = 0;
    if (WebPGetInfo(file.data(), file.size(), &width, &height) == 0) fail("WebP", why);
    std::uint8_t* pixels = makeRoom(image, static_cast<std::uint64_t>(width),
                                    static_cast<std::uint64_t>(height), file, why);
    if (pixels == nullptr) fail("WebP", why);
    why = {"its pixels are not whole"};
    if (WebPDecodeRGBAInto(file.data(), file.size(), pixels, image.rgba.size(), width * 4) ==
        nullptr) {
        fail("WebP", why);
    }
}

bool startsWith(Bytes file, std::string_view signature, std::size_t offset = 0) {
    return file.size() >= offset + signature.size() &&
           std::memcmp(file.data() + offset, signature.data(), signature.size()) == 0;
}

}  // namespace

Image decodeImage(Bytes file, const std::string& name) {
    Image image;
    image.name = name;
    if (startsWith(file, "\x89PNG")) {
        decodePng(file, image);
    } else if (startsWith(file, "\xFF\xD8")) {
        decodeJpeg(file, image);
    } else if (startsWith(file, "RIFF") && startsWith(file, "WEBP", 8)) {
        decodeWebp(file, image);
    } else {
        throw Error(Fault::Scene, "is neither PNG, JPEG nor WebP");
    }
    return image;
}

}  // namespace tavora::studio
