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

// Some file systems offer no flushing; that is not a failed write.
bool flushed(int descriptor) {
    if (uninterrupted([&] { return ::fsync(descriptor); }) == 0) return true;
    return errno == EINVAL || errno == ENOSYS || errno == ENOTSUP;
}

}  // namespace

AtomicFile::AtomicFile(const fs::path& target)
    : asked_(target),
      place_(outputPlace(target)),
      temporary_(place_.target.parent_path(), place_.permissions, target) {
    // The mask of the process counts for new files only.
    const auto keep = [&] { return ::fchmod(temporary_.descriptor(), place_.permissions); };
    if (place_.replaces && uninterrupted(keep) != 0) {
        fail("cannot be given the permissions of the file it replaces", errno);
    }
}

void AtomicFile::fail(const char* doing, int error) const {
    throw Error(Fault::Output, outputMessage(asked_, doing, error));
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
    if (!flushed(temporary_.descriptor())) fail("cannot be flushed to disk", errno);
    if (readBack) readBack(temporary_.descriptor());
    if (!closesWell(temporary_.descriptor())) fail("cannot be written", errno);
    markWritten();
    if (!temporary_.rename(place_.target)) fail("cannot be put in place", errno);
    flushFolder();
}

// Until then a power cut may bring the old file back. A folder that may be written to but
// not read cannot be flushed.
void AtomicFile::flushFolder() const {
    const fs::path path = place_.target.parent_path();
    const int folder =
        uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    if (folder < 0 && errno == EACCES) return;
    const bool safe = folder >= 0 && flushed(folder);
    const int error = errno;
    if (folder >= 0) ::close(folder);
    if (!safe) fail("is written, but its folder cannot be flushed to disk", error);
}

}  // namespace tavora::studio
