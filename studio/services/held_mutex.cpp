#include "studio/services/held_mutex.h"

#include <linux/membarrier.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace tavora::studio {
namespace {

bool callMembarrier(int command) {
    return syscall(__NR_membarrier, command, 0, 0) == 0;
}

/// Kernels without it, older than 4.14, get no reservations.
bool canReserve() {
    static const bool can = callMembarrier(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED);
    return can;
}

}  // namespace

void HeldMutex::enterShared() {
    mutex_.lock();
    const Thread owner = owner_.load(std::memory_order_relaxed);
    if (owner == &nobody) return;
    if (owner == nullptr) {
        owner_.store(canReserve() ? &here : &nobody, std::memory_order_relaxed);
    } else {
        endReservation();
    }
}

/// For good. Makes every running thread of the program pass a barrier, once, so
/// that the owner, who passes none, needs none.
void HeldMutex::endReservation() {
    owner_.store(&nobody, std::memory_order_seq_cst);
    callMembarrier(MEMBARRIER_CMD_PRIVATE_EXPEDITED);
    while (inside_.load(std::memory_order_acquire))
        std::this_thread::yield();
}

}  // namespace tavora::studio
