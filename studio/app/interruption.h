#pragma once

#include <atomic>

namespace tavora::studio {

/// Installs handlers for SIGINT, SIGTERM, SIGHUP and SIGQUIT, which remove unfinished files and
/// exit with 128 + n. Ignores the signals of a closed pipe and of the limit on file sizes, so
/// that writing fails instead. To be called once, from the main thread, before other threads
/// start.
void watchSignals();

/// As long as an object of this class exists, the first signal only requests to stop; the second
/// ends the program at once. Main thread.
class GracefulStop {
  public:
    /// With `isResumable`, the second signal exits with kResumable.
    explicit GracefulStop(bool isResumable = false);
    ~GracefulStop();
    GracefulStop(const GracefulStop&) = delete;
    GracefulStop& operator=(const GracefulStop&) = delete;

    /// Becomes true with the first signal.
    const std::atomic<bool>& isRequested() const;
};

/// The signal that was received last; 0 when there was none.
int stopSignal();

/// The message for a program that a signal stopped, which also says that nothing was written
/// if that is true. Safe to call from a signal handler.
const char* stoppedText() noexcept;

}  // namespace tavora::studio
