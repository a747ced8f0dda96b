#include "studio/files/temporary_file.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <fmt/format.h>
#include <string>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "studio/files/output_target.h"
#include "studio/files/system_calls.h"
#include "studio/files/unfinished_files.h"
#include "studio/util/error.h"
#include "studio/util/hash.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

// The prefix of this machine's temporary files. In a shared folder, a lock may be visible only on
// the machine that holds it, so files of other machines must not be removed.
std::string machinePrefix() {
    std::array<char, 256> name{};
    ::gethostname(name.data(), name.size() - 1);
    return fmt::format(".tavora-{:08x}-", static_cast<std::uint32_t>(hashOf(name.data())));
}

// A name of fixed length, so that it works even when the target's name has the maximum length.
std::string newName() {
    std::uint64_t number = 0;
    if (::getrandom(&number, sizeof number, GRND_NONBLOCK) != sizeof number) {
        static std::uint64_t counter = 0;
        number = (static_cast<std::uint64_t>(::getpid()) << 32) + ++counter;
    }
    return fmt::format("{}{:016x}.tmp", machinePrefix(), number);
}

// Locks a file; false when another process holds the lock. True on file systems without locks.
bool tryLock(int descriptor) {
    return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

// False when another process removed the file as abandoned before it was locked.
bool hasName(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && status.st_nlink > 0;
}

void removeIfAbandoned(const fs::path& file) {
    const int descriptor = uninterrupted(
        [&] { return ::open(file.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC); });
    if (descriptor < 0) return;
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) ::unlink(file.c_str());
    ::close(descriptor);
}

}  // namespace

void removeAbandonedFiles(const fs::path& folder) {
    const std::string prefix = machinePrefix();
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (name.starts_with(prefix) && name.ends_with(".tmp")) removeIfAbandoned(entry->path());
    }
}

TemporaryFile::TemporaryFile(const fs::path& folder, unsigned permissions,
                             const fs::path& requested) {
    removeAbandonedFiles(folder);
    constexpr int kTries = 16;
    for (int i = 0; i < kTries; ++i) {
        path_ = folder / newName();
        if (create(permissions)) return;
        if (errno != EEXIST) break;
    }
    throw Error(Fault::Output, outputMessage(requested, "cannot be created", errno));
}

// Creates the file at path_. Returns false and sets `errno`, to EEXIST if another name may work.
bool TemporaryFile::create(unsigned permissions) {
    slot_ = listUnfinished(path_.c_str());
    descriptor_ = uninterrupted([&] {
        return ::open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC,
                      static_cast<mode_t>(permissions));
    });
    if (descriptor_ >= 0 && tryLock(descriptor_) && hasName(descriptor_)) return true;
    const int error = descriptor_ < 0 ? errno : EEXIST;
    if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
    unlistUnfinished(std::exchange(slot_, std::nullopt));
    errno = error;
    return false;
}

TemporaryFile::~TemporaryFile() {
    if (!path_.empty()) ::unlink(path_.c_str());
    unlistUnfinished(slot_);
    ::close(descriptor_);
}

bool TemporaryFile::rename(const fs::path& target) noexcept {
    if (::rename(path_.c_str(), target.c_str()) != 0) return false;
    path_.clear();
    return true;
}

}  // namespace tavora::studio
