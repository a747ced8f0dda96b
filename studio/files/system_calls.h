#pragma once

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace tavora::studio {

/// Repeats a system call as long as signals interrupt it, and returns its result.
template <class Call>
auto uninterrupted(const Call& call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

/// Checks whether closing a file would fail, as it does on some network file systems when the disk
/// is full. Closes a copy of the descriptor, so that the file stays open and locked. False, with
/// `errno` set, when data was lost.
inline bool checkClose(int descriptor) {
    const int copy = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    return copy >= 0 && (::close(copy) == 0 || errno == EINTR);  // closed even if interrupted
}

}  // namespace tavora::studio
