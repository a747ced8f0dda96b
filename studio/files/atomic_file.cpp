#include "studio/files/atomic_file.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <fmt/format.h>
#include <string>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "studio/files/output_place.h"
#include "studio/files/unfinished_files.h"
#include "studio/files/written_mark.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

// Of fixed length: a target whose name is as long as names may be still works.
std::string temporaryName() {
    std::uint64_t number = 0;
    if (::getrandom(&number, sizeof number, GRND_NONBLOCK) != sizeof number) {
        static std::uint64_t counter = 0;
        number = (static_cast<std::uint64_t>(::getpid()) << 32) + ++counter;
    }
    return fmt::format(".tavora-{:016x}.tmp", number);
}

// Some file systems offer no flushing; that is not a failed write.
bool flushed(int descriptor) {
    if (::fsync(descriptor) == 0) return true;
    return errno == EINVAL || errno == ENOSYS || errno == ENOTSUP;
}

}  // namespace

AtomicFile::AtomicFile(const fs::path& target) : asked_(target) {
    const OutputPlace place = outputPlace(target);
    target_ = place.target;
    create(place.permissions);
    // The mask of the process counts for new files only.
    if (place.replaces && ::fchmod(descriptor_, place.permissions) != 0) {
        const int error = errno;
        close();
        fail("cannot be given the permissions of the file it replaces", error);
    }
}

AtomicFile::~AtomicFile() {
    close();
}

void AtomicFile::create(unsigned permissions) {
    constexpr int kTries = 16;
    for (int i = 0; i < kTries; ++i) {
        temporary_ = target_.parent_path() / temporaryName();
        slot_ = listUnfinished(temporary_.c_str());
        descriptor_ = ::open(temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC,
                             static_cast<mode_t>(permissions));
        if (descriptor_ >= 0) return;
        const int error = errno;
        unlistUnfinished(std::exchange(slot_, -1));
        if (error != EEXIST) fail("cannot be created", error);
    }
    fail("cannot be created", EEXIST);
}

void AtomicFile::close() {
    if (descriptor_ < 0) return;
    ::close(std::exchange(descriptor_, -1));
    ::unlink(temporary_.c_str());
    unlistUnfinished(std::exchange(slot_, -1));
}

void AtomicFile::fail(const char* doing, int error) {
    throw Error(Fault::Output, outputMessage(asked_, doing, error));
}

void AtomicFile::write(const void* data, std::size_t size) {
    const char* next = static_cast<const char*>(data);
    while (size > 0 && error_ == 0) {
        const ssize_t written = ::write(descriptor_, next, size);
        if (written < 0 && errno == EINTR) continue;
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
    if (!flushed(descriptor_)) fail("cannot be flushed to disk", errno);
    if (readBack) readBack(descriptor_);
    // From here on the descriptor is done with, whatever closing it says.
    const int closed = ::close(std::exchange(descriptor_, -1)) == 0 ? 0 : errno;
    markWritten();
    const int renamed =
        closed == 0 && ::rename(temporary_.c_str(), target_.c_str()) != 0 ? errno : 0;
    if (closed != 0 || renamed != 0) ::unlink(temporary_.c_str());
    unlistUnfinished(std::exchange(slot_, -1));
    if (closed != 0) fail("cannot be written", closed);
    if (renamed != 0) fail("cannot be put in place", renamed);
    flushFolder();
}

// The file stands complete by now; a folder that cannot be flushed (some
// network folders) takes nothing from it.
void AtomicFile::flushFolder() const {
    const int folder = ::open(target_.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return;
    ::fsync(folder);
    ::close(folder);
}

}  // namespace tavora::studio
