#pragma once

namespace tavora::studio {

/// To be called before a file is renamed to its final name, and before data is written to standard
/// output: from then on messages must not say that nothing was written. Any thread.
void markWritten() noexcept;

/// Whether markWritten() was called. Safe to call from a signal handler.
bool anythingWritten() noexcept;

}  // namespace tavora::studio
