#include "studio/files/output_target.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "studio/util/error.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

struct Advice {
    int error;
    const char* text;
};

constexpr std::array<Advice, 12> kAdvice{{
    {ENOSPC, "free some space or choose another disk"},
    {EDQUOT, "free some of your quota or choose another disk"},
    {EFBIG, "raise the limit on file sizes or choose another disk"},
    {EACCES, "choose a place you may write to"},
    {EPERM, "choose a place you may write to"},
    {EROFS, "choose a disk that can be written to"},
    {ENOENT, "create the folder first"},
    {ENOTDIR, "name a folder, not a file, before the last '/'"},
    {EISDIR, "name a file, not a folder"},
    {ENAMETOOLONG, "choose a shorter name"},
    {EBADF, "do not close it, or name a file"},
    {ELOOP, "remove the links that point at each other"},
}};

const char* adviceFor(int error) {
    for (const Advice& advice : kAdvice) {
        if (advice.error == error) return advice.text;
    }
    return "check the disk or choose another place";
}

[[noreturn]] void refuse(const fs::path& file, const char* doing, int error) {
    throw Error(Fault::Output, outputMessage(file, doing, error));
}

// Follows symbolic links one by one, because the last one may point at a file that does not exist.
fs::path followLinks(const fs::path& requested) {
    constexpr int kMaxLinks = 40;
    fs::path path = requested;
    for (int i = 0; i < kMaxLinks; ++i) {
        std::error_code error;
        if (!fs::is_symlink(fs::symlink_status(path, error))) return path;
        const fs::path next = fs::read_symlink(path, error);
        if (error) return path;
        path = path.parent_path() / next;
    }
    refuse(requested, "cannot be written", ELOOP);
}

void checkPlainFile(const fs::path& requested, const fs::path& target, const struct stat& status) {
    if (S_ISDIR(status.st_mode)) refuse(requested, "cannot be written", EISDIR);
    if (!S_ISREG(status.st_mode)) {
        throw Error(
            Fault::Output,
            fmt::format("{}: is a device or pipe, which cannot be written whole; name a plain file",
                        requested.string()));
    }
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
        refuse(requested, "cannot be replaced", errno);
    }
}

}  // namespace

OutputTarget outputTarget(const fs::path& requested) {
    if (requested.filename().empty()) refuse(requested, "cannot be written", EISDIR);
    OutputTarget result;
    std::error_code error;
    result.target = fs::absolute(followLinks(requested), error);
    if (error) refuse(requested, "cannot be written", error.value());
    struct stat status {};
    if (::stat(result.target.c_str(), &status) != 0) {
        const int missing = errno;
        if (missing == ENOENT && fs::exists(result.target.parent_path(), error)) return result;
        refuse(requested, "cannot be written", missing);
    }
    checkPlainFile(requested, result.target, status);
    result.replaces = true;
    result.permissions = status.st_mode & 0777U;
    return result;
}

std::string outputMessage(const fs::path& file, const char* doing, int error) {
    const std::string reason = std::generic_category().message(error);
    return fmt::format("{}: {}: {}; {}", file.string(), doing, reason, adviceFor(error));
}

}  // namespace tavora::studio
