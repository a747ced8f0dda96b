#include "studio/files/whole_file.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <functional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "studio/files/atomic_file.h"
#include "studio/files/output_target.h"
#include "studio/files/system_calls.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

[[noreturn]] void failReading(const fs::path& file, int error) {
    throw std::system_error(error, std::generic_category(), file.string());
}

class OpenFile {
  public:
    // Non-blocking, so that opening a pipe without a writer does not wait forever.
    explicit OpenFile(const fs::path& file)
        : descriptor(uninterrupted(
              [&] { return ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); })) {
        if (descriptor < 0) failReading(file, errno);
    }
    ~OpenFile() { ::close(descriptor); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    const int descriptor;
};

std::size_t plainSize(int descriptor, const fs::path& file) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) failReading(file, errno);
    if (S_ISDIR(status.st_mode)) failReading(file, EISDIR);
    if (!S_ISREG(status.st_mode)) failReading(file, EINVAL);
    return static_cast<std::size_t>(status.st_size);
}

// Reads up to `size` bytes from `offset`; fewer only at the end of the file.
std::size_t readAt(int descriptor, std::size_t offset, char* to, std::size_t size,
                   const fs::path& file) {
    std::size_t count = 0;
    while (count < size) {
        const ssize_t got = uninterrupted([&] {
            return ::pread(descriptor, to + count, size - count,
                           static_cast<off_t>(offset + count));
        });
        if (got < 0) failReading(file, errno);
        if (got == 0) break;
        count += static_cast<std::size_t>(got);
    }
    return count;
}

bool hasContents(int descriptor, std::string_view bytes, const fs::path& file) {
    if (plainSize(descriptor, file) != bytes.size()) return false;
    std::array<char, 65536> buffer;
    for (std::size_t offset = 0; offset < bytes.size();) {
        const std::string_view wanted = bytes.substr(offset, buffer.size());
        const std::size_t got = readAt(descriptor, offset, buffer.data(), wanted.size(), file);
        if (std::string_view(buffer.data(), got) != wanted) return false;
        offset += got;
    }
    return true;
}

}  // namespace

std::string readWholeFile(const fs::path& file, std::size_t limit) {
    const OpenFile in(file);
    const std::size_t size = plainSize(in.descriptor, file);
    if (size > limit) failReading(file, EFBIG);
    std::string bytes(size, '\0');
    bytes.resize(readAt(in.descriptor, 0, bytes.data(), size, file));
    return bytes;
}

void writeWholeFile(const fs::path& file, std::string_view bytes) {
    AtomicFile out(file);
    out.write(bytes.data(), bytes.size());
    try {
        out.commit([&](int descriptor) {
            if (hasContents(descriptor, bytes, file)) return;
            throw Error(Fault::Output, fmt::format("{}: reads back other than it was written; "
                                                   "check the disk or choose another place",
                                                   file.string()));
        });
    } catch (const std::system_error& error) {
        throw Error(Fault::Output,
                    outputMessage(file, "cannot be read back", error.code().value()));
    }
}

}  // namespace tavora::studio
