#include "plugin/record/light_entry.h"

#include <cstring>

namespace tavora {
namespace {

bool continuesUtf8Character(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0u) == 0x80u;
}

/// Bytes of `name` that fit an entry.
std::size_t fittingLength(const char* name) {
    constexpr std::size_t limit = lightNameSize - 1;
    const std::size_t length = strnlen(name, lightNameSize);
    if (length <= limit) return length;
    // A character has at most three bytes after its first; more are not UTF-8,
    // and such a name is cut where the room ends.
    for (std::size_t cut = limit; cut > limit - 4; --cut) {
        if (!continuesUtf8Character(name[cut])) return cut;
    }
    return limit;
}

}  // namespace

void copyLightName(const char* name, char (&room)[lightNameSize]) {
    const std::size_t length = fittingLength(name);
    std::memcpy(room, name, length);
    room[length] = '\0';
}

LightEntry lightNamed(const char* name) {
    LightEntry entry{};
    copyLightName(name, entry.name);
    return entry;
}

}  // namespace tavora
