#pragma once

namespace tavora::studio {

/// Notes that a file is about to be put in place, or data to leave on standard output: from
/// here on nobody may claim that nothing was written. Any thread.
void markWritten() noexcept;

/// Whether markWritten() was ever called. Safe to call from a signal handler.
bool anythingWritten() noexcept;

}  // namespace tavora::studio
