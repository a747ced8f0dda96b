#include "studio/util/text.h"

namespace tavora::studio {

std::string oneLine(std::string_view text) {
    std::string line(text);
    for (char& c : line) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n' || c == '\r' || c == '\t') {
            c = ' ';
        } else if (byte < 0x20 || byte == 0x7f) {
            c = '?';
        }
    }
    return line;
}

std::string_view cutText(std::string_view text, std::size_t maxBytes) {
    if (text.size() <= maxBytes) return text;
    const auto continues = [&](std::size_t i) {
        return (static_cast<unsigned char>(text[i]) & 0xC0U) == 0x80U;
    };
    // A character has at most three continuation bytes in UTF-8.
    for (std::size_t back = 0; back < 4 && back <= maxBytes; ++back)
        if (!continues(maxBytes - back)) return text.substr(0, maxBytes - back);
    return text.substr(0, maxBytes);
}

std::string shortened(std::string_view text) {
    constexpr std::size_t kMaxQuoted = 60;
    if (text.size() <= kMaxQuoted) return std::string(text);
    return std::string(cutText(text, kMaxQuoted)) + "..";
}

}  // namespace tavora::studio
