#include "studio/files/atomic_file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "studio/files/system_calls.h"
#include "studio/files/written_mark.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

// Flushes a file to disk. True also on file systems that cannot flush.
bool flush(int descriptor) {
    if (uninterrupted([&] { return ::fsync(descriptor); }) == 0) return true;
    return errno == EINVAL || errno == ENOSYS || errno == ENOTSUP;
}

}  // namespace

AtomicFile::AtomicFile(const fs::path& target)
    : requested_(target),
      target_(outputTarget(target)),
      temporary_(target_.target.parent_path(), target_.permissions, target) {
    // A replaced file keeps its permissions, whatever the process's mask is.
    const auto setPermissions = [&] {
        return ::fchmod(temporary_.descriptor(), target_.permissions);
    };
    if (target_.replaces && uninterrupted(setPermissions) != 0) {
        fail("cannot be given the permissions of the file it replaces", errno);
    }
}

void AtomicFile::fail(const char* doing, int error) const {
    throw Error(Fault::Output, outputMessage(requested_, doing, error));
}

void AtomicFile::write(const void* data, std::size_t size) {
    const char* next = static_cast<const char*>(data);
    while (size > 0 && error_ == 0) {
        const ssize_t written =
            uninterrupted([&] { return ::write(temporary_.descriptor(), next, size); });
        if (written <= 0) {
            error_ = written < 0 ? errno : EIO;
            break;
        }
        next += written;
        size -= static_cast<std::size_t>(written);
    }
    if (error_ != 0) fail("cannot be written", error_);
}

void AtomicFile::commit(const std::function<void(int)>& readBack) {
    if (error_ != 0) fail("cannot be written", error_);
    if (!flush(temporary_.descriptor())) fail("cannot be flushed to disk", errno);
    if (readBack) readBack(temporary_.descriptor());
    if (!checkClose(temporary_.descriptor())) fail("cannot be written", errno);
    markWritten();
    if (!temporary_.rename(target_.target)) fail("cannot be put in place", errno);
    flushFolder();
}

// Without this, a power failure may bring the old file back. A folder that may be written but not
// read cannot be flushed.
void AtomicFile::flushFolder() const {
    const fs::path path = target_.target.parent_path();
    const int folder =
        uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    if (folder < 0 && errno == EACCES) return;
    const bool safe = folder >= 0 && flush(folder);
    const int error = errno;
    if (folder >= 0) ::close(folder);
    if (!safe) fail("is written, but its folder cannot be flushed to disk", error);
}

}  // namespace tavora::studio
