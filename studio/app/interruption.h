#pragma once

#include <atomic>

namespace tavora::studio {

/// Takes over SIGINT, SIGTERM, SIGHUP and SIGQUIT. Normally such a signal ends the
/// program at once: unfinished files are removed and it exits with 128 + n.
/// Also keeps a full disk or a closed pipe from ending it: those become errors
/// of the write. Once, from the main thread, before others start.
void watchSignals();

/// While one lives, the first signal only asks to stop; the second ends the
/// program at once. Main thread.
class PoliteStop {
  public:
    /// Work that `isResumable` ends with kResumable then.
    explicit PoliteStop(bool isResumable = false);
    ~PoliteStop();
    PoliteStop(const PoliteStop&) = delete;
    PoliteStop& operator=(const PoliteStop&) = delete;

    /// Becomes true with the first signal.
    const std::atomic<bool>& asked() const;
};

/// The signal that asked to stop; 0 when none did.
int stopSignal();

/// What to say of a program that a signal stopped: that nothing was written, where that
/// is true. Safe to call from a signal handler.
const char* stoppedText() noexcept;

}  // namespace tavora::studio
