#include "studio/scene/image_decoder.h"

#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <jpeglib.h>
#include <memory>
#include <png.h>
#include <webp/decode.h>

#include "studio/scene/scene_error.h"

namespace tavora::studio {
namespace {

using Bytes = std::span<const std::uint8_t>;

// A picture may not unpack to more than this many pixels, nor to wildly more
// than its file can hold.
constexpr std::uint64_t kMostPixels = 1U << 28;
constexpr std::uint64_t kMostPixelsPerByte = 20000;

void checkSize(std::uint64_t width, std::uint64_t height, Bytes file) {
    const bool sane = width > 0 && height > 0 && width <= 65536 && height <= 65536 &&
                      width * height <= kMostPixels &&
                      width * height <= kMostPixelsPerByte * (file.size() + 64);
    if (!sane) {
        throw SceneError("claims " + std::to_string(width) + " x " + std::to_string(height) +
                         " pixels in " + std::to_string(file.size()) + " bytes");
    }
}

void allocate(Image& image, std::uint64_t width, std::uint64_t height, Bytes file) {
    checkSize(width, height, file);
    image.width = static_cast<int>(width);
    image.height = static_cast<int>(height);
    image.rgba.resize(static_cast<std::size_t>(width * height * 4));
}

void decodePng(Bytes file, Image& image) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&png, file.data(), file.size()) == 0) {
        throw SceneError(std::string("is no whole PNG (") + png.message + ")");
    }
    png.format = PNG_FORMAT_RGBA;
    try {
        allocate(image, png.width, png.height, file);
    } catch (...) {
        png_image_free(&png);
        throw;
    }
    if (png_image_finish_read(&png, nullptr, image.rgba.data(), 0, nullptr) == 0 ||
        PNG_IMAGE_FAILED(png)) {
        throw SceneError(std::string("is a damaged PNG (") + png.message + ")");
    }
}

/// libjpeg's errors as a jump back with a text; warnings count as damage.
struct JpegErrors {
    jpeg_error_mgr base;
    std::jmp_buf back;
    char text[JMSG_LENGTH_MAX];
};

void jpegFailed(j_common_ptr info) {
    auto* errors = reinterpret_cast<JpegErrors*>(info->err);
    info->err->format_message(info, errors->text);
    std::longjmp(errors->back, 1);
}

void jpegMessage(j_common_ptr info, int level) {
    if (level < 0) jpegFailed(info);
}

/// Runs libjpeg; only plain data lives here, since errors jump out of it.
/// `begin` allocates the pixels and returns null when the size is not sane.
bool runJpeg(Bytes file, JpegErrors& errors, Image& image,
             std::uint8_t* (*begin)(Image&, unsigned, unsigned, Bytes)) {
    jpeg_decompress_struct jpeg;
    std::memset(&jpeg, 0, sizeof jpeg);
    jpeg.err = jpeg_std_error(&errors.base);
    errors.base.error_exit = jpegFailed;
    errors.base.emit_message = jpegMessage;
    if (setjmp(errors.back) != 0) {
        jpeg_destroy_decompress(&jpeg);
        return false;
    }
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&jpeg, TRUE);
    jpeg.out_color_space = JCS_EXT_RGBA;
    std::uint8_t* pixels = begin(image, jpeg.image_width, jpeg.image_height, file);
    if (pixels == nullptr) {
        std::snprintf(errors.text, sizeof errors.text, "claims %u x %u pixels", jpeg.image_width,
                      jpeg.image_height);
        jpeg_destroy_decompress(&jpeg);
        return false;
    }
    jpeg_start_decompress(&jpeg);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = pixels + std::size_t{jpeg.output_scanline} * jpeg.output_width * 4;
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    return true;
}

std::uint8_t* beginJpeg(Image& image, unsigned width, unsigned height, Bytes file) {
    try {
        allocate(image, width, height, file);
        return image.rgba.data();
    } catch (const std::exception&) {
        return nullptr;
    }
}

void decodeJpeg(Bytes file, Image& image) {
    JpegErrors errors{};
    if (!runJpeg(file, errors, image, beginJpeg)) {
        throw SceneError(std::string("is a damaged JPEG (") + errors.text + ")");
    }
}

void decodeWebp(Bytes file, Image& image) {
    int width = 0;
    int height = 0;
    if (WebPGetInfo(file.data(), file.size(), &width, &height) == 0) {
        throw SceneError("is no whole WebP");
    }
    allocate(image, static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height), file);
    if (WebPDecodeRGBAInto(file.data(), file.size(), image.rgba.data(), image.rgba.size(),
                           width * 4) == nullptr) {
        throw SceneError("is a damaged WebP");
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
        throw SceneError("is neither PNG, JPEG nor WebP");
    }
    return image;
}

}  // namespace tavora::studio
