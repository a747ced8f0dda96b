#include "plugin/record/light_entry.h"

#include <cstring>
#include <new>
#include <utility>

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

LightListBuilder::~LightListBuilder() {
    freeLights(head_);
}

void copyLightName(const char* name, char (&room)[lightNameSize]) {
    const std::size_t length = fittingLength(name);
    std::memcpy(room, name, length);
    room[length] = '\0';
}

bool LightListBuilder::append(const char* name) {
    auto* entry = new (std::nothrow) LightEntry{};
    if (entry == nullptr) return false;
    copyLightName(name, entry->name);
    (tail_ == nullptr ? head_ : tail_->next) = entry;
    tail_ = entry;
    return true;
}

LightEntry* LightListBuilder::take() {
    tail_ = nullptr;
    return std::exchange(head_, nullptr);
}

void freeLights(LightEntry* head) {
    while (head != nullptr)
        delete std::exchange(head, head->next);
}

}  // namespace tavora
