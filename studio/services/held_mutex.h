#pragma once

#include <atomic>
#include <mutex>

namespace tavora::studio {

/// A recursive mutex that knows its holder, so that unlocking another thread's
/// is refused; std::recursive_mutex leaves that undefined. Any thread.
///
/// The first thread that takes it finds it reserved from then on, and pays for no
/// atomic exchange until another thread comes: a render lane takes its module's
/// mutex for every sample, and nobody else ever does.
/// After: Kawachiya, Koseki and Onodera, "Lock Reservation: Java Locks Can Mostly
/// Do Without Atomic Operations", OOPSLA 2002.
class HeldMutex {
  public:
    void lock() {
        if (!isMine()) {
            if (!enterReserved()) enterShared();
            holder_.store(&here, std::memory_order_relaxed);
        }
        ++depth_;
    }

    /// False when this thread does not hold it.
    bool unlock() {
        if (!isMine()) return false;
        if (--depth_ == 0) leave();
        return true;
    }

  private:
    using Thread = const char*;
    /// Its address stands for the thread.
    inline static thread_local const char here = 0;
    /// Its address stands for no thread.
    inline static constexpr char nobody = 0;

    /// No other thread can make or unmake this one the holder, so that it needs
    /// to see no other thread's writes in order.
    bool isMine() const { return holder_.load(std::memory_order_relaxed) == &here; }

    bool isReserved() const { return owner_.load(std::memory_order_relaxed) == &here; }

    /// False where it is not, or no longer, reserved for this thread.
    bool enterReserved() {
        if (!isReserved()) return false;
        // Acquires what a thread of the same address, now ended, left.
        static_cast<void>(inside_.load(std::memory_order_acquire));
        inside_.store(true, std::memory_order_relaxed);
        // For the compiler. On the processor, endReservation() sees to it that
        // either this thread finds its reservation ended, or it is found inside.
        std::atomic_signal_fence(std::memory_order_seq_cst);
        if (isReserved()) return byReservation_ = true;
        inside_.store(false, std::memory_order_release);
        return false;
    }

    void leave() {
        holder_.store(nullptr, std::memory_order_relaxed);
        if (byReservation_) {
            byReservation_ = false;
            inside_.store(false, std::memory_order_release);
        } else {
            mutex_.unlock();
        }
    }

    void enterShared();
    void endReservation();

    std::atomic<Thread> holder_ = nullptr;
    int depth_ = 0;                        ///< the holder's
    bool byReservation_ = false;           ///< the holder's: is in without `mutex_`
    std::atomic<Thread> owner_ = nullptr;  ///< for whom it is reserved; null: for the first
    std::atomic<bool> inside_ = false;     ///< the owner is in, or about to look whether it may be
    std::mutex mutex_;
};

}  // namespace tavora::studio
