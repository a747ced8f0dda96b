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

}  // namespace tavora::studio
