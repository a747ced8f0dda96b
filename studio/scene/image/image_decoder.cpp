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

// Limits on the decoded size of an image. kMaxPixelsPerByte is more than the strongest
// compression of these formats reaches.
constexpr std::uint64_t kMaxSide = 65536;
constexpr std::uint64_t kMaxPixels = 1U << 28;
constexpr std::uint64_t kMaxPixelsPerByte = 20000;

using ErrorText = std::array<char, 256>;

/// An image while it is decoded. Memory that was taken from the budget and that the image
/// does not hold is given back at the end.
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
    ErrorText error{};
};

/// Allocates the pixels and returns them. Also takes `scratch` bytes a pixel from the
/// budget, for memory that the decoder allocates. The C libraries leave their functions by
/// longjmp, so nothing may be thrown here: failure returns null and sets `error`.
std::uint8_t* allocatePixels(Decoding& decoding, std::uint64_t width, std::uint64_t height,
                             std::uint64_t scratch = 0) noexcept {
    const Bytes file = decoding.file;
    Image& image = decoding.image;
    ErrorText& error = decoding.error;
    const bool sane = width > 0 && height > 0 && width <= kMaxSide && height <= kMaxSide &&
                      width * height <= kMaxPixels &&
                      width * height <= kMaxPixelsPerByte * file.size();
    if (!sane) {
        std::snprintf(error.data(), error.size(), "it claims %llu x %llu pixels in %zu bytes",
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
        std::snprintf(error.data(), error.size(), "too little memory for it");
        return nullptr;
    }
}

[[noreturn]] void fail(const char* format, const Decoding& decoding) {
    if (decoding.overBudget) {
        throw Error(Fault::Scene, "takes more memory than the scene may (see --max-memory)");
    }
    throw Error(Fault::Scene,
                std::string("is a damaged ") + format + " (" + decoding.error.data() + ")");
}

// --- PNG ---

struct PngState {
    Decoding& decoding;
    std::size_t offset = 0;  ///< into the file
    png_structp png = nullptr;
    png_infop info = nullptr;
};

void pngFailed(png_structp png, png_const_charp text) {
    auto* state = static_cast<PngState*>(png_get_error_ptr(png));
    std::snprintf(state->decoding.error.data(), state->decoding.error.size(), "%s", text);
    png_longjmp(png, 1);
}

void pngWarned(png_structp /*png*/, png_const_charp /*text*/) {}

void pngRead(png_structp png, png_bytep to, std::size_t size) {
    auto* state = static_cast<PngState*>(png_get_io_ptr(png));
    const Bytes file = state->decoding.file;
    if (size > file.size() - state->offset) png_error(png, "it breaks off");
    std::memcpy(to, file.data() + state->offset, size);
    state->offset += size;
}

/// Converts all kinds of PNG to 8-bit RGBA. Values are not colour-managed: textures ignore
/// the file's gamma and colour profile.
void convertToRgba(PngState& state) {
    png_set_expand(state.png);
    png_set_scale_16(state.png);
    png_set_gray_to_rgb(state.png);
    png_set_add_alpha(state.png, 0xff, PNG_FILLER_AFTER);
    png_set_interlace_handling(state.png);
    png_read_update_info(state.png, state.info);
}

/// Local variables may only be plain data, since libpng's errors jump back into it.
bool runPng(PngState& state) {
    if (setjmp(png_jmpbuf(state.png)) != 0) return false;
    png_set_read_fn(state.png, &state, pngRead);
    png_set_user_limits(state.png, kMaxSide, kMaxSide);
    png_set_keep_unknown_chunks(state.png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_read_info(state.png, state.info);
    const Image& image = state.decoding.image;
    std::uint8_t* pixels =
        allocatePixels(state.decoding, png_get_image_width(state.png, state.info),
                       png_get_image_height(state.png, state.info));
    if (pixels == nullptr) return false;
    const bool interlaced = png_get_interlace_type(state.png, state.info) != PNG_INTERLACE_NONE;
    convertToRgba(state);
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

// A scan can take a few bytes in the file and still cost a pass over all pixels. So images
// with more than kMaxScans are refused, and large ones with more scans than is usual.
constexpr int kMaxScans = 500;
constexpr int kUsualScans = 16;
constexpr std::uint64_t kMaxScannedPixels = 1U << 28;

struct JpegState {
    jpeg_error_mgr errors;
    jpeg_progress_mgr progress;
    std::jmp_buf back;
    Decoding* decoding;
};

[[noreturn]] void jpegFail(j_common_ptr info, const char* text) {
    auto* state = static_cast<JpegState*>(info->client_data);
    std::snprintf(state->decoding->error.data(), state->decoding->error.size(), "%s", text);
    std::longjmp(state->back, 1);
}

void jpegFailed(j_common_ptr info) {
    char text[JMSG_LENGTH_MAX];
    info->err->format_message(info, text);
    jpegFail(info, text);
}

/// Warnings that mean wrong pixels are errors; others are ignored, since cameras and old
/// programs write files that cause them.
void jpegMessage(j_common_ptr info, int level) {
    if (level >= 0) return;
    switch (info->err->msg_code) {
        case JWRN_JPEG_EOF:
            jpegFail(info, "it breaks off");
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
    if (scans > kMaxScans || (scans > kUsualScans && scanned > kMaxScannedPixels)) {
        jpegFail(info, "it never ends");
    }
}

/// Converts a row of CMYK, 4 bytes a pixel, to RGBA. Values are inverted in files with an
/// Adobe marker: there 0 is the full amount of an ink.
void cmykToRgba(std::uint8_t* row, std::size_t pixels, bool inverted) {
    const auto light = [inverted](unsigned ink) { return inverted ? ink : 255U - ink; };
    for (std::uint8_t* pixel = row; pixel != row + 4 * pixels; pixel += 4) {
        const unsigned black = light(pixel[3]);
        for (int i = 0; i < 3; ++i)
            pixel[i] = static_cast<std::uint8_t>((light(pixel[i]) * black + 127) / 255);
        pixel[3] = 255;
    }
}

/// Local variables may only be plain data, since libjpeg's errors jump back into it.
bool runJpeg(jpeg_decompress_struct& jpeg, JpegState& state) {
    if (setjmp(state.back) != 0) return false;
    jpeg_create_decompress(&jpeg);
    jpeg.progress = &state.progress;
    const Bytes file = state.decoding->file;
    jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&jpeg, TRUE);
    const bool isCmyk = jpeg.jpeg_color_space == JCS_CMYK || jpeg.jpeg_color_space == JCS_YCCK;
    jpeg.out_color_space = isCmyk ? JCS_CMYK : JCS_EXT_RGBA;
    // The decoder keeps the coefficients of the whole image when there are several scans.
    const bool isProgressive = jpeg_has_multiple_scans(&jpeg) != 0;
    const std::uint64_t coefficients =
        isProgressive ? sizeof(JCOEF) * static_cast<std::uint64_t>(jpeg.num_components) : 0;
    std::uint8_t* pixels =
        allocatePixels(*state.decoding, jpeg.image_width, jpeg.image_height, coefficients);
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

/// Decodes the first frame of an animation onto its canvas.
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
    decoding.error = {"it has no whole header"};
    if (WebPGetFeatures(file.data(), file.size(), &features) != VP8_STATUS_OK) {
        fail("WebP", decoding);
    }
    // The decoder of animations allocates two canvases.
    std::uint8_t* pixels = allocatePixels(decoding, static_cast<std::uint64_t>(features.width),
                                          static_cast<std::uint64_t>(features.height),
                                          features.has_animation != 0 ? 8 : 0);
    if (pixels == nullptr) fail("WebP", decoding);
    decoding.error = {"its pixels are not whole"};
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
