#include "studio/scene/gltf/uri.h"

namespace tavora::studio {
namespace {

std::optional<int> hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return std::nullopt;
}

std::optional<std::string> percentDecoded(std::string_view uri) {
    std::string plain;
    for (std::size_t i = 0; i < uri.size(); ++i) {
        if (uri[i] != '%') {
            plain += uri[i];
            continue;
        }
        if (i + 2 >= uri.size()) return std::nullopt;
        const std::optional<int> high = hexDigit(uri[i + 1]);
        const std::optional<int> low = hexDigit(uri[i + 2]);
        if (!high || !low) return std::nullopt;
        plain += static_cast<char>(*high * 16 + *low);
        i += 2;
    }
    return plain;
}

std::optional<unsigned> base64Digit(char c) {
    if (c >= 'A' && c <= 'Z') return static_cast<unsigned>(c - 'A');
    if (c >= 'a' && c <= 'z') return static_cast<unsigned>(c - 'a' + 26);
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0' + 52);
    if (c == '+') return 62;
    if (c == '/') return 63;
    return std::nullopt;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> dataOfUri(std::string_view uri) {
    constexpr std::string_view kMark = ";base64,";
    const std::size_t mark = uri.find(kMark);
    if (!isDataUri(uri) || mark == std::string_view::npos) return std::nullopt;
    std::string_view text = uri.substr(mark + kMark.size());
    for (int padding = 0; padding < 2 && !text.empty() && text.back() == '='; ++padding)
        text.remove_suffix(1);
    if (text.size() % 4 == 1) return std::nullopt;

    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 4 * 3 + 2);
    unsigned buffered = 0;
    int bits = 0;
    for (char c : text) {
        const std::optional<unsigned> digit = base64Digit(c);
        if (!digit) return std::nullopt;
        buffered = ((buffered << 6U) | *digit) & 0xffffU;
        bits += 6;
        if (bits < 8) continue;
        bits -= 8;
        bytes.push_back(static_cast<std::uint8_t>(buffered >> static_cast<unsigned>(bits)));
    }
    return bytes;
}

std::optional<std::string> fileOfUri(std::string_view uri) {
    std::optional<std::string> plain = percentDecoded(uri);
    if (!plain || plain->empty() || plain->front() == '/' || plain->front() == '~') {
        return std::nullopt;
    }
    if (plain->find_first_of(std::string_view(":\\\0", 3)) != std::string::npos) {
        return std::nullopt;
    }
    return plain;
}

}  // namespace tavora::studio
