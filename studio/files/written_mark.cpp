#include "studio/files/written_mark.h"

#include <atomic>

namespace tavora::studio {
namespace {

std::atomic<bool> written{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler reads this");

}  // namespace

void markWritten() noexcept {
    written.store(true);
}

bool anythingWritten() noexcept {
    return written.load();
}

}  // namespace tavora::studio
