#include <array>
#include <atomic>
#include <mutex>
#include <new>

#include "studio/services/service_tables.h"

namespace tavora::studio {
namespace {

/// A recursive mutex that knows its holder, so that unlocking another thread's
/// is refused; std::recursive_mutex leaves that undefined.
class HeldMutex {
  public:
    void lock() {
        if (!isMine()) {
            mutex_.lock();
            holder_.store(&here, std::memory_order_relaxed);
        }
        ++depth_;
    }

    /// False when this thread does not hold it.
    bool unlock() {
        if (!isMine()) return false;
        if (--depth_ == 0) {
            holder_.store(nullptr, std::memory_order_relaxed);
            mutex_.unlock();
        }
        return true;
    }

  private:
    /// No other thread can make or unmake this one the holder, so that it needs
    /// to see no other thread's writes in order.
    bool isMine() const { return holder_.load(std::memory_order_relaxed) == &here; }

    /// Its address stands for the thread.
    inline static thread_local const char here = 0;

    std::mutex mutex_;
    std::atomic<const char*> holder_ = nullptr;
    int depth_ = 0;  ///< the holder's
};

}  // namespace
}  // namespace tavora::studio

struct HostMutex {
    std::array<tavora::studio::HeldMutex, HOST_MUTEXES_PER_OBJECT> mutexes;
};

namespace tavora::studio {
namespace {

HostMutexId create() {
    return new (std::nothrow) HostMutex;
}

void destroy(HostMutexId object) {
    delete object;
}

HeldMutex* find(HostMutexId object, int number) {
    if (object == nullptr || number < 0 || number >= HOST_MUTEXES_PER_OBJECT) return nullptr;
    return &object->mutexes[static_cast<std::size_t>(number)];
}

int lock(HostMutexId object, int number) {
    HeldMutex* mutex = find(object, number);
    if (mutex == nullptr) return 0;
    mutex->lock();
    return 1;
}

int unlock(HostMutexId object, int number) {
    HeldMutex* mutex = find(object, number);
    return mutex != nullptr && mutex->unlock() ? 1 : 0;
}

}  // namespace

const HostMultithreading kMultithreading = {create, destroy, lock, unlock};

}  // namespace tavora::studio
