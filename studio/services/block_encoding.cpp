#include "studio/services/block_encoding.h"

#include <bit>
#include <cstdint>
#include <optional>

namespace tavora::studio {
namespace {

constexpr std::string_view kMark = "TAVORA1\n";

void putWord(std::string& bytes, std::uint32_t word) {
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<char>(word >> shift & 0xffU));
}

struct Encoder {
    std::string& bytes;

    void operator()(std::int32_t value) const {
        bytes.push_back('i');
        putWord(bytes, static_cast<std::uint32_t>(value));
    }
    void operator()(float value) const {
        bytes.push_back('f');
        putWord(bytes, std::bit_cast<std::uint32_t>(value));
    }
    void operator()(const std::string& value) const {
        bytes.push_back('s');
        putWord(bytes, static_cast<std::uint32_t>(value.size()));
        bytes += value;
    }
};

/// Takes pieces off the front of `bytes`; none when it is too short.
struct Decoder {
    std::string_view bytes;

    std::optional<std::string_view> take(std::size_t size) {
        if (bytes.size() < size) return std::nullopt;
        const std::string_view piece = bytes.substr(0, size);
        bytes.remove_prefix(size);
        return piece;
    }

    std::optional<std::uint32_t> takeWord() {
        const auto piece = take(4);
        if (!piece) return std::nullopt;
        std::uint32_t word = 0;
        for (std::size_t i = 4; i-- > 0;)
            word = word << 8 | static_cast<unsigned char>((*piece)[i]);
        return word;
    }

    std::optional<StateItem> takeItem() {
        const auto kind = take(1);
        const auto word = kind ? takeWord() : std::nullopt;
        if (!word) return std::nullopt;
        switch (kind->front()) {
            case 'i':
                return static_cast<std::int32_t>(*word);
            case 'f':
                return std::bit_cast<float>(*word);
            case 's':
                if (const auto text = take(*word)) return std::string(*text);
                return std::nullopt;
            default:
                return std::nullopt;
        }
    }
};

}  // namespace

std::string encodeBlock(const StateBlock& block) {
    std::string bytes(kMark);
    for (const StateItem& item : block)
        std::visit(Encoder{bytes}, item);
    return bytes;
}

StateBlock decodeBlock(std::string_view bytes) {
    StateBlock block;
    if (!bytes.starts_with(kMark)) return block;
    Decoder decoder{bytes.substr(kMark.size())};
    while (auto item = decoder.takeItem())
        block.push_back(std::move(*item));
    return block;
}

}  // namespace tavora::studio
