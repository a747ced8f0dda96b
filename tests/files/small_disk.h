#pragma once

#include <csignal>
#include <sys/resource.h>

namespace tavora::studio {

/// While it lives, files of this process may grow to `bytes`, the way a disk
/// fills up: the write that crosses the limit is cut short, the next one fails.
class SmallDisk {
  public:
    explicit SmallDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit small{bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

  private:
    rlimit before_{};
    void (*handler_)(int);
};

}  // namespace tavora::studio
