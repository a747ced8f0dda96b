#include "studio/edit/file_stamp.h"

#include <fmt/format.h>
#include <system_error>

#include "studio/files/whole_file.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t kMostBytes = std::size_t{1} << 32;

[[noreturn]] void refuse(const fs::path& file, const std::error_code& error) {
    throw Error(Fault::Scene,
                fmt::format("{}: cannot be read: {}; put it back or open another scene",
                            file.string(), error.message()));
}

FileStamp quickStamp(const fs::path& file) {
    std::error_code error;
    FileStamp stamp;
    stamp.size = fs::file_size(file, error);
    if (!error) stamp.written = fs::last_write_time(file, error);
    if (error) refuse(file, error);
    return stamp;
}

std::uint64_t contentHash(const fs::path& file) {
    try {
        return hashOf(readWholeFile(file, kMostBytes));
    } catch (const std::system_error& error) {
        refuse(file, error.code());
    }
}

}  // namespace

std::uint64_t hashOf(std::string_view bytes) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char byte : bytes) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    }
    return hash;
}

FileStamp stampOf(const fs::path& file) {
    FileStamp stamp = quickStamp(file);
    stamp.hash = contentHash(file);
    return stamp;
}

bool isUnchanged(const fs::path& file, const FileStamp& stamp) {
    const FileStamp now = quickStamp(file);
    if (now.size != stamp.size) return false;
    return now.written == stamp.written || contentHash(file) == stamp.hash;
}

}  // namespace tavora::studio
