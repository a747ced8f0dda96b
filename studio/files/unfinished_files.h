#pragma once

namespace tavora::studio {

/// The list of temporary files that a signal handler may have to remove.
/// Fixed memory, no locks, so that the handler can read it at any moment.
///
/// Lists `path` (absolute); returns its slot, or -1 when the list is full or
/// the path too long for it: such a file is left behind by a signal. Any thread.
int listUnfinished(const char* path) noexcept;

/// Takes a slot off the list; -1 is ignored. Any thread.
void unlistUnfinished(int slot) noexcept;

}  // namespace tavora::studio
