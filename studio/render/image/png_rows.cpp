#include "studio/render/image/png_rows.h"

#include <algorithm>
#include <csetjmp>
#include <cstdint>
#include <cstring>
#include <new>
#include <png.h>
#include <vector>

#include "studio/render/image/display_encoding.h"

namespace tavora::studio {
namespace {

constexpr double kMostPacked = 1040;  // times that deflate can shrink anything

int bitsOf(const PictureFormat& format) {
    return format.depth == PictureDepth::Sixteen ? 16 : 8;
}

char* put(char* to, unsigned value, int bits) {
    if (bits == 16) *to++ = static_cast<char>(value >> 8);
    *to++ = static_cast<char>(value & 0xffU);
    return to;
}

void putPixel(char* to, const float* rgba, const PictureFormat& format) {
    const int bits = bitsOf(format);
    unsigned levels[4];
    encodeForDisplay(rgba, format.alpha, bits == 8 ? 255 : 65535, levels);
    for (std::size_t i = 0; i < format.channels(); ++i)
        to = put(to, levels[i], bits);
}

bool isPlainText(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

/// The notes as the library takes them; points into them.
std::vector<png_text> textsOf(const PictureNotes& notes) {
    std::vector<png_text> texts;
    for (const auto& [name, text] : notes) {
        png_text entry{};
        const bool isPlain = isPlainText(text);
        entry.compression = isPlain ? PNG_TEXT_COMPRESSION_NONE : PNG_ITXT_COMPRESSION_NONE;
        entry.key = const_cast<char*>(name.c_str());
        entry.text = const_cast<char*>(text.c_str());
        (isPlain ? entry.text_length : entry.itxt_length) = text.size();
        texts.push_back(entry);
    }
    return texts;
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

bool encode(Encoder& encoder, const StoredPicture& picture, std::vector<png_text>& texts) {
    if (setjmp(png_jmpbuf(encoder.png)) != 0) return false;
    const auto width = static_cast<png_uint_32>(picture.window.width());
    const auto height = static_cast<png_uint_32>(picture.window.height());
    png_set_write_fn(encoder.png, &encoder, append, flush);
    png_set_user_limits(encoder.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(encoder.png, encoder.info, width, height, bitsOf(picture.format),
                 picture.format.alpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_sRGB_gAMA_and_cHRM(encoder.png, encoder.info, PNG_sRGB_INTENT_PERCEPTUAL);
    if (!texts.empty())
        png_set_text(encoder.png, encoder.info, texts.data(), static_cast<int>(texts.size()));
    png_write_info(encoder.png, encoder.info);
    const auto* pixels = reinterpret_cast<const png_byte*>(picture.rows.data());
    for (std::size_t row = 0; row < height; ++row)
        png_write_row(encoder.png, pixels + row * picture.rowBytes());
    png_write_end(encoder.png, nullptr);
    return true;
}

/// The same for reading.
struct Decoder {
    png_structp png = nullptr;
    png_infop info = nullptr;
    const char* at = nullptr;
    const char* end = nullptr;
};

void take(png_structp png, png_bytep data, png_size_t size) {
    auto* decoder = static_cast<Decoder*>(png_get_io_ptr(png));
    if (static_cast<png_size_t>(decoder->end - decoder->at) < size) png_error(png, "truncated");
    std::memcpy(data, decoder->at, size);
    decoder->at += size;
}

bool readHeader(Decoder& decoder, std::size_t bytes, StoredPicture& picture) {
    if (setjmp(png_jmpbuf(decoder.png)) != 0) return false;
    png_set_read_fn(decoder.png, &decoder, take);
    png_set_crc_action(decoder.png, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
    png_set_user_limits(decoder.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_read_info(decoder.png, decoder.info);
    const int color = png_get_color_type(decoder.png, decoder.info);
    const int bits = png_get_bit_depth(decoder.png, decoder.info);
    const bool isOurs = (color == PNG_COLOR_TYPE_RGB || color == PNG_COLOR_TYPE_RGB_ALPHA) &&
                        (bits == 8 || bits == 16) &&
                        png_get_interlace_type(decoder.png, decoder.info) == PNG_INTERLACE_NONE;
    if (!isOurs) return false;
    picture.format = {PictureFormat::Kind::Png,
                      bits == 16 ? PictureDepth::Sixteen : PictureDepth::Eight,
                      color == PNG_COLOR_TYPE_RGB_ALPHA};
    const png_uint_32 width = png_get_image_width(decoder.png, decoder.info);
    const png_uint_32 height = png_get_image_height(decoder.png, decoder.info);
    const double size =
        static_cast<double>(width) * height * static_cast<double>(picture.format.pixelBytes());
    if (size > kMostPacked * static_cast<double>(bytes)) return false;
    picture.width = static_cast<int>(width);
    picture.height = static_cast<int>(height);
    picture.window = {0, 0, picture.width, picture.height};
    return true;
}

// Memory grows with what is there, not with what the header promises.
bool readRows(Decoder& decoder, StoredPicture& picture) {
    if (setjmp(png_jmpbuf(decoder.png)) != 0) return false;
    const std::size_t bytes = picture.rowBytes();
    for (int row = 0; row < picture.height; ++row) {
        const std::size_t before = picture.rows.size();
        picture.rows.resize(before + bytes);
        png_read_row(decoder.png, reinterpret_cast<png_bytep>(&picture.rows[before]), nullptr);
    }
    png_read_end(decoder.png, nullptr);
    return true;
}

PictureNotes notesOf(const Decoder& decoder) {
    PictureNotes notes;
    png_textp texts = nullptr;
    const int count = png_get_text(decoder.png, decoder.info, &texts, nullptr);
    for (int i = 0; i < count; ++i)
        notes[texts[i].key] = texts[i].text != nullptr ? texts[i].text : "";
    return notes;
}

bool decode(Decoder& decoder, std::size_t bytes, StoredPicture& picture) {
    if (!readHeader(decoder, bytes, picture)) return false;
    picture.notes = notesOf(decoder);
    return readRows(decoder, picture) && decoder.at == decoder.end;
}

}  // namespace

std::string pngRows(const Picture& picture, const PictureFormat& format) {
    const std::size_t count = picture.rgba.size() / 4;
    std::string rows(count * format.pixelBytes(), '\0');
    for (std::size_t i = 0; i < count; ++i)
        putPixel(&rows[i * format.pixelBytes()], &picture.rgba[i * 4], format);
    return rows;
}

std::string encodePng(const StoredPicture& picture) {
    std::vector<png_text> texts = textsOf(picture.notes);
    std::string bytes;
    Encoder encoder;
    encoder.bytes = &bytes;
    encoder.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, fail, ignoreWarning);
    encoder.info = encoder.png != nullptr ? png_create_info_struct(encoder.png) : nullptr;
    const bool done = encoder.info != nullptr && encode(encoder, picture, texts);
    if (encoder.png != nullptr) png_destroy_write_struct(&encoder.png, &encoder.info);
    if (!done) throw std::bad_alloc();
    return bytes;
}

bool decodePng(std::string_view bytes, StoredPicture& picture) {
    Decoder decoder;
    decoder.at = bytes.data();
    decoder.end = bytes.data() + bytes.size();
    decoder.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, fail, ignoreWarning);
    decoder.info = decoder.png != nullptr ? png_create_info_struct(decoder.png) : nullptr;
    if (decoder.info == nullptr) {
        png_destroy_read_struct(&decoder.png, nullptr, nullptr);
        throw std::bad_alloc();
    }
    bool done = false;
    try {
        done = decode(decoder, bytes.size(), picture);
    } catch (...) {
        png_destroy_read_struct(&decoder.png, &decoder.info, nullptr);
        throw;
    }
    png_destroy_read_struct(&decoder.png, &decoder.info, nullptr);
    return done;
}

}  // namespace tavora::studio
