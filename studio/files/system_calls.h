#pragma once

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace tavora::studio {

/// Makes a system call again for as long as signals interrupt it; returns what it returns.
template <class Call>
auto uninterrupted(const Call& call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

/// Some network folders tell of a full disk only when a file is closed. Closes a copy of
/// the descriptor, which asks them and leaves the file open and locked. False, with `errno`
/// set, when something was lost.
inline bool closesWell(int descriptor) {
    const int copy = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    return copy >= 0 && (::close(copy) == 0 || errno == EINTR);  // interrupted, it is closed
}

}  // namespace tavora::studio
