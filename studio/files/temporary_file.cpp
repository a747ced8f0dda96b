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

#include "studio/files/output_place.h"
#include "studio/files/system_calls.h"
#include "studio/files/unfinished_files.h"
#include "studio/util/error.h"
#include "studio/util/hash.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

// What the names of this machine's temporary files begin with. In a folder that machines
// share, a lock may be known to the machine alone that holds it.
std::string machinePrefix() {
    std::array<char, 256> name{};
    ::gethostname(name.data(), name.size() - 1);
    return fmt::format(".tavora-{:08x}-", static_cast<std::uint32_t>(hashOf(name.data())));
}

// Of fixed length: a target whose name is as long as names may be still works.
std::string newName() {
    std::uint64_t number = 0;
    if (::getrandom(&number, sizeof number, GRND_NONBLOCK) != sizeof number) {
        static std::uint64_t counter = 0;
        number = (static_cast<std::uint64_t>(::getpid()) << 32) + ++counter;
    }
    return fmt::format("{}{:016x}.tmp", machinePrefix(), number);
}

// Whether the lock is ours; file systems without locks count as such.
bool locked(int descriptor) {
    return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

// Whoever looks for abandoned files may have removed this one before it was locked.
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

TemporaryFile::TemporaryFile(const fs::path& folder, unsigned permissions, const fs::path& asked) {
    removeAbandonedFiles(folder);
    constexpr int kTries = 16;
    for (int i = 0; i < kTries; ++i) {
        path_ = folder / newName();
        if (create(permissions)) return;
        if (errno != EEXIST) break;
    }
    throw Error(Fault::Output, outputMessage(asked, "cannot be created", errno));
}

// False with EEXIST where another name may do.
bool TemporaryFile::create(unsigned permissions) {
    slot_ = listUnfinished(path_.c_str());
    descriptor_ = uninterrupted([&] {
        return ::open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC,
                      static_cast<mode_t>(permissions));
    });
    if (descriptor_ >= 0 && locked(descriptor_) && hasName(descriptor_)) return true;
    const int error = descriptor_ < 0 ? errno : EEXIST;
    if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
    unlistUnfinished(std::exchange(slot_, -1));
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
