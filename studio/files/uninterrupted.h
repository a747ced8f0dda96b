#pragma once

#include <cerrno>

namespace tavora::studio {

/// Makes a system call again for as long as signals interrupt it; returns what it returns.
template <class Call>
auto uninterrupted(const Call& call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

}  // namespace tavora::studio
