#include "studio/files/output_place.h"

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

// Follows links one by one, because the last one may point at a file yet to be made.
fs::path followLinks(const fs::path& asked) {
    constexpr int kMostLinks = 40;
    fs::path path = asked;
    for (int i = 0; i < kMostLinks; ++i) {
        std::error_code error;
        if (!fs::is_symlink(fs::symlink_status(path, error))) return path;
        const fs::path next = fs::read_symlink(path, error);
        if (error) return path;
        path = path.parent_path() / next;
    }
    refuse(asked, "cannot be written", ELOOP);
}

void checkPlainFile(const fs::path& asked, const fs::path& target, const struct stat& status) {
    if (S_ISDIR(status.st_mode)) refuse(asked, "cannot be written", EISDIR);
    if (!S_ISREG(status.st_mode)) {
        throw Error(
            Fault::Output,
            fmt::format("{}: is a device or pipe, which cannot be written whole; name a plain file",
                        asked.string()));
    }
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
        refuse(asked, "cannot be replaced", errno);
    }
}

}  // namespace

OutputPlace outputPlace(const fs::path& asked) {
    if (asked.filename().empty()) refuse(asked, "cannot be written", EISDIR);
    OutputPlace place;
    std::error_code error;
    place.target = fs::absolute(followLinks(asked), error);
    if (error) refuse(asked, "cannot be written", error.value());
    struct stat status {};
    if (::stat(place.target.c_str(), &status) != 0) {
        const int missing = errno;
        if (missing == ENOENT && fs::exists(place.target.parent_path(), error)) return place;
        refuse(asked, "cannot be written", missing);
    }
    checkPlainFile(asked, place.target, status);
    place.replaces = true;
    place.permissions = status.st_mode & 0777U;
    return place;
}

std::string outputMessage(const fs::path& file, const char* doing, int error) {
    const std::string reason = std::generic_category().message(error);
    return fmt::format("{}: {}: {}; {}", file.string(), doing, reason, adviceFor(error));
}

}  // namespace tavora::studio
