#include "studio/edit/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tavora::studio {
namespace {

// Whether the open file still has that name: the previous holder of the lock may have removed
// it after it was opened here.
bool isAt(const std::filesystem::path& file, int descriptor) {
    struct stat named {};
    struct stat open {};
    return ::stat(file.c_str(), &named) == 0 && ::fstat(descriptor, &open) == 0 &&
           named.st_ino == open.st_ino && named.st_dev == open.st_dev;
}

}  // namespace

FileLock::FileLock(std::filesystem::path file, int descriptor)
    : file_(std::move(file)), descriptor_(descriptor) {}

std::optional<FileLock> FileLock::take(const std::filesystem::path& file) {
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0) return std::nullopt;
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0 && isAt(file, descriptor)) {
        return FileLock(file, descriptor);
    }
    ::close(descriptor);
    return std::nullopt;
}

FileLock::~FileLock() {
    if (descriptor_ < 0) return;
    ::unlink(file_.c_str());
    ::close(descriptor_);
}

FileLock::FileLock(FileLock&& other) noexcept
    : file_(std::move(other.file_)), descriptor_(std::exchange(other.descriptor_, -1)) {}

FileLock& FileLock::operator=(FileLock&& other) noexcept {
    std::swap(file_, other.file_);
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

}  // namespace tavora::studio
