#include "studio/services/block_encoding.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace tavora::studio {
namespace {

constexpr std::string_view kSignature = "TAVORA1\n";

void putItem(void* bytes, char kind, std::uint32_t word) {
    std::string& to = *static_cast<std::string*>(bytes);
    to.push_back(kind);
    for (int shift = 0; shift < 32; shift += 8)
        to.push_back(static_cast<char>(word >> shift & 0xffU));
}

void writeInt(void* bytes, const std::int32_t* values, int count) {
    for (int i = 0; i < count; ++i)
        putItem(bytes, 'i', static_cast<std::uint32_t>(values[i]));
}

void writeFloat(void* bytes, const float* values, int count) {
    for (int i = 0; i < count; ++i)
        putItem(bytes, 'f', std::bit_cast<std::uint32_t>(values[i]));
}

void writeString(void* bytes, const char* text) {
    const std::string_view written = text == nullptr ? "" : text;
    putItem(bytes, 's', static_cast<std::uint32_t>(written.size()));
    static_cast<std::string*>(bytes)->append(written);
}

}  // namespace

EncodingWriter::EncodingWriter()
    : record_{HOST_IO_OBJECT, &bytes_, writeInt, writeFloat, writeString}, bytes_(kSignature) {}

EncodingReader::EncodingReader(std::string bytes)
    : record_{HOST_IO_OBJECT, this, readInt, readFloat, readString},
      bytes_(std::move(bytes)),
      rest_(bytes_) {
    rest_ = rest_.starts_with(kSignature) ? rest_.substr(kSignature.size()) : std::string_view();
}

std::optional<std::string_view> EncodingReader::takeBytes(std::size_t size) {
    if (rest_.size() < size) {
        rest_ = {};
        return std::nullopt;
    }
    const std::string_view piece = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return piece;
}

std::optional<std::uint32_t> EncodingReader::takeWord() {
    const auto piece = takeBytes(4);
    if (!piece) return std::nullopt;
    std::uint32_t word = 0;
    for (std::size_t i = 4; i-- > 0;)
        word = word << 8 | static_cast<unsigned char>((*piece)[i]);
    return word;
}

std::optional<std::uint32_t> EncodingReader::takeItem(char kind) {
    const auto found = takeBytes(1);
    if (found && found->front() == kind) return takeWord();
    rest_ = {};
    return std::nullopt;
}

template <typename T>
int EncodingReader::take(char kind, T* values, int count) {
    for (int taken = 0; taken < count; ++taken) {
        const auto word = takeItem(kind);
        if (!word) return taken;
        values[taken] = std::bit_cast<T>(*word);
    }
    return std::max(count, 0);
}

int EncodingReader::readInt(void* self, std::int32_t* values, int count) {
    return static_cast<EncodingReader*>(self)->take('i', values, count);
}

int EncodingReader::readFloat(void* self, float* values, int count) {
    return static_cast<EncodingReader*>(self)->take('f', values, count);
}

int EncodingReader::readString(void* self, char* buffer, int capacity) {
    if (capacity <= 0) return 0;
    auto& reader = *static_cast<EncodingReader*>(self);
    const auto size = reader.takeItem('s');
    const auto text = size ? reader.takeBytes(*size) : std::nullopt;
    if (!text) return 0;
    const std::size_t length = std::min(text->size(), static_cast<std::size_t>(capacity) - 1);
    std::memcpy(buffer, text->data(), length);
    buffer[length] = '\0';
    return 1;
}

}  // namespace tavora::studio
