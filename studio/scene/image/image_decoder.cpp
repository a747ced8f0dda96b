#include "studio/scene/image/image_decoder.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <jpeglib.h>
#include <memory>
#include <png.h>
#include <webp/decode.h>
#include <webp/demux.h>

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

/// A file on its way to pixels. What it took of the budget and did not leave to the
/// image is given back at the end.
struct Decoding {
    Decoding(Bytes encoded, Image& decoded, MemoryBudget& budget)
        : file(encoded), image(decoded), memory(budget) {}
    Decoding(const Decoding&) = delete;
    Decoding& operator=(const Decoding&) = delete;
    ~Decoding() { memory.giveBack(taken); }

    Bytes file;
    Image& image;
    MemoryBudget& memory;
    std::uint64_t taken = 0;  ///< bytes
    bool overBudget = false;
    Text why{};
};

/// Makes room for the pixels and returns them, and charges for `scratch` more bytes a
/// pixel that decoding needs. C libraries jump over their callers, so nothing may be
/// thrown here: null and a text instead.
std::uint8_t* makeRoom(Decoding& decoding, std::uint64_t width, std::uint64_t height,
                       std::uint64_t scratch = 0) noexcept {
    const Bytes file = decoding.file;
    Image& image = decoding.image;
    Text& why = decoding.why;
    const bool sane = width > 0 && height > 0 && width <= kMostSide && height <= kMostSide &&
                      width * height <= kMostPixels &&
                      width * height <= kMostPixelsPerByte * file.size();
    if (!sane) {
        std::snprintf(why.data(), why.size(), "it claims %llu x %llu pixels in %zu bytes",
                      static_cast<unsigned long long>(width),
                      static_cast<unsigned long long>(height), file.size());
        return nullptr;
    }
    const std::uint64_t bytes = width * height * (4 + scratch);
    decoding.overBudget = !decoding.memory.tryTake(bytes);
    if (decoding.overBudget) return nullptr;
    decoding.taken = bytes;
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

[[noreturn]] void fail(const char* format, const Decoding& decoding) {
    if (decoding.overBudget) {
        throw Error(Fault::Scene, "takes more memory than the scene may (see --max-memory)");
    }
    throw Error(Fault::Scene,
                std::string("is a damaged ") + format + " (" + decoding.why.data() + ")");
}

// --- PNG ---

struct PngState {
    Decoding& decoding;
    std::size_t at = 0;
    png_structp png = nullptr;
    png_infop info = nullptr;
};

void pngFailed(png_structp png, png_const_charp text) {
    auto* state = static_cast<PngState*>(png_get_error_ptr(png));
    std::snprintf(state->decoding.why.data(), state->decoding.why.size(), "%s", text);
    png_longjmp(png, 1);
}

void pngWarned(png_structp /*png*/, png_const_charp /*text*/) {}

void pngRead(png_structp png, png_bytep to, std::size_t size) {
    auto* state = static_cast<PngState*>(png_get_io_ptr(png));
    const Bytes file = state->decoding.file;
    if (size > file.size() - state->at) png_error(png, "it breaks off");
    std::memcpy(to, file.data() + state->at, size);
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
bool runPng(PngState& state) {
    if (setjmp(png_jmpbuf(state.png)) != 0) return false;
    png_set_read_fn(state.png, &state, pngRead);
    png_set_user_limits(state.png, kMostSide, kMostSide);
    png_set_keep_unknown_chunks(state.png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_read_info(state.png, state.info);
    const Image& image = state.decoding.image;
    std::uint8_t* pixels = makeRoom(state.decoding, png_get_image_width(state.png, state.info),
                                    png_get_image_height(state.png, state.info));
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

void decodePng(Decoding& decoding) {
    PngState state{decoding};
    state.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &state, pngFailed, pngWarned);
    if (state.png != nullptr) state.info = png_create_info_struct(state.png);
    const bool good = state.info != nullptr && runPng(state);
    png_destroy_read_struct(&state.png, &state.info, nullptr);
    if (!good) fail("PNG", decoding);
}

// --- JPEG ---

// A picture in more scans was not made to be looked at; nor, if it is not small, in
// more than a usual one has, each of which takes a few bytes and goes over all pixels.
constexpr int kMostScans = 500;
constexpr int kUsualScans = 16;
constexpr std::uint64_t kMostScannedPixels = 1U << 28;

struct JpegState {
    jpeg_error_mgr errors;
    jpeg_progress_mgr progress;
    std::jmp_buf back;
    Decoding* decoding;
};

[[noreturn]] void jpegGiveUp(j_common_ptr info, const char* text) {
    auto* state = static_cast<JpegState*>(info->client_data);
    std::snprintf(state->decoding->why.data(), state->decoding->why.size(), "%s", text);
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
    const int scans = jpeg->input_scan_number;
    const std::uint64_t scanned =
        static_cast<std::uint64_t>(scans) * jpeg->image_width * jpeg->image_height;
    if (scans > kMostScans || (scans > kUsualScans && scanned > kMostScannedPixels)) {
        jpegGiveUp(info, "it never ends");
    }
}

/// Turns a row of CMYK, 4 bytes a pixel, into RGBA. Files that bear Adobe's mark are
/// inverted: 0 is all of an ink.
void cmykToRgba(std::uint8_t* row, std::size_t pixels, bool inverted) {
    const auto light = [inverted](unsigned ink) { return inverted ? ink : 255U - ink; };
    for (std::uint8_t* pixel = row; pixel != row + 4 * pixels; pixel += 4) {
        const unsigned black = light(pixel[3]);
        for (int i = 0; i < 3; ++i)
            pixel[i] = static_cast<std::uint8_t>((light(pixel[i]) * black + 127) / 255);
        pixel[3] = 255;
    }
}

/// Only plain data lives here, since libjpeg's errors jump back into it.
bool runJpeg(jpeg_decompress_struct& jpeg, JpegState& state) {
    if (setjmp(state.back) != 0) return false;
    jpeg_create_decompress(&jpeg);
    jpeg.progress = &state.progress;
    const Bytes file = state.decoding->file;
    jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&jpeg, TRUE);
    const bool isCmyk = jpeg.jpeg_color_space == JCS_CMYK || jpeg.jpeg_color_space == JCS_YCCK;
    jpeg.out_color_space = isCmyk ? JCS_CMYK : JCS_EXT_RGBA;
    // All coefficients are kept where they come in several scans.
    const bool isProgressive = jpeg_has_multiple_scans(&jpeg) != 0;
    const std::uint64_t coefficients =
        isProgressive ? sizeof(JCOEF) * static_cast<std::uint64_t>(jpeg.num_components) : 0;
    std::uint8_t* pixels =
        makeRoom(*state.decoding, jpeg.image_width, jpeg.image_height, coefficients);
    if (pixels == nullptr) return false;
    jpeg_start_decompress(&jpeg);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = pixels + std::size_t{jpeg.output_scanline} * jpeg.output_width * 4;
        jpeg_read_scanlines(&jpeg, &row, 1);
        if (isCmyk) cmykToRgba(row, jpeg.output_width, jpeg.saw_Adobe_marker != 0);
    }
    jpeg_finish_decompress(&jpeg);
    return true;
}

void decodeJpeg(Decoding& decoding) {
    JpegState state{};
    state.decoding = &decoding;
    state.progress.progress_monitor = jpegScanned;
    jpeg_decompress_struct jpeg{};
    jpeg.err = jpeg_std_error(&state.errors);
    jpeg.client_data = &state;
    state.errors.error_exit = jpegFailed;
    state.errors.emit_message = jpegMessage;
    const bool good = runJpeg(jpeg, state);
    jpeg_destroy_decompress(&jpeg);
    if (!good) fail("JPEG", decoding);
}

// --- WebP ---

/// The canvas as the first picture of an animation leaves it.
bool decodeFirstFrame(Decoding& decoding, std::uint8_t* pixels) {
    const WebPData data{decoding.file.data(), decoding.file.size()};
    const std::unique_ptr<WebPAnimDecoder, decltype(&WebPAnimDecoderDelete)> decoder(
        WebPAnimDecoderNew(&data, nullptr), WebPAnimDecoderDelete);
    std::uint8_t* canvas = nullptr;
    int timestamp = 0;
    const bool good =
        decoder != nullptr && WebPAnimDecoderGetNext(decoder.get(), &canvas, &timestamp) != 0;
    if (good) std::copy_n(canvas, decoding.image.rgba.size(), pixels);
    return good;
}

void decodeWebp(Decoding& decoding) {
    const Bytes file = decoding.file;
    WebPBitstreamFeatures features{};
    decoding.why = {"it has no whole header"};
    if (WebPGetFeatures(file.data(), file.size(), &features) != VP8_STATUS_OK) {
        fail("WebP", decoding);
    }
    // An animation is put together on two canvases.
    std::uint8_t* pixels =
        makeRoom(decoding, static_cast<std::uint64_t>(features.width),
                 static_cast<std::uint64_t>(features.height), features.has_animation != 0 ? 8 : 0);
    if (pixels == nullptr) fail("WebP", decoding);
    decoding.why = {"its pixels are not whole"};
    const bool good =
        features.has_animation != 0
            ? decodeFirstFrame(decoding, pixels)
            : WebPDecodeRGBAInto(file.data(), file.size(), pixels, decoding.image.rgba.size(),
                                 features.width * 4) != nullptr;
    if (!good) fail("WebP", decoding);
}

bool startsWith(Bytes file, std::string_view signature, std::size_t offset = 0) {
    return file.size() >= offset + signature.size() &&
           std::memcmp(file.data() + offset, signature.data(), signature.size()) == 0;
}

}  // namespace

Image decodeImage(Bytes file, const std::string& name, MemoryBudget& memory) {
    Image image;
    image.name = name;
    Decoding decoding(file, image, memory);
    if (startsWith(file, "\x89PNG")) {
        decodePng(decoding);
    } else if (startsWith(file, "\xFF\xD8")) {
        decodeJpeg(decoding);
    } else if (startsWith(file, "RIFF") && startsWith(file, "WEBP", 8)) {
        decodeWebp(decoding);
    } else {
        throw Error(Fault::Scene, "is neither PNG, JPEG nor WebP");
    }
    decoding.taken -= image.rgba.size();
    return image;
}

}  // namespace tavora::studio
