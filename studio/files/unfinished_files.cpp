#include "studio/files/unfinished_files.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "studio/files/atomic_file.h"

namespace tavora::studio {
namespace {

enum SlotState : int { kFree, kClaimed, kListed };

struct Slot {
    std::atomic<int> state{kFree};
    std::array<char, 4096> path;
};

// Never freed, since a signal handler may read a slot while another thread releases it.
std::array<Slot, 64> slots;

static_assert(std::atomic<int>::is_always_lock_free, "a signal handler reads these");

}  // namespace

std::optional<std::size_t> listUnfinished(const char* path) noexcept {
    const std::size_t length = std::strlen(path);
    if (length >= slots[0].path.size()) return std::nullopt;
    for (std::size_t i = 0; i < slots.size(); ++i) {
        int expected = kFree;
        if (!slots[i].state.compare_exchange_strong(expected, kClaimed)) continue;
        std::memcpy(slots[i].path.data(), path, length + 1);
        slots[i].state.store(kListed);
        return i;
    }
    return std::nullopt;
}

void unlistUnfinished(std::optional<std::size_t> slot) noexcept {
    if (slot) slots[*slot].state.store(kFree);
}

void removeUnfinishedFiles() noexcept {
    const int saved = errno;
    for (const Slot& slot : slots) {
        if (slot.state.load() == kListed) ::unlink(slot.path.data());
    }
    errno = saved;
}

}  // namespace tavora::studio
