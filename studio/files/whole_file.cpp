#include "studio/files/whole_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <functional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "studio/files/atomic_file.h"
#include "studio/files/output_error.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

[[noreturn]] void failReading(const fs::path& file, int error) {
    throw std::system_error(error, std::generic_category(), file.string());
}

class OpenFile {
  public:
    // Without blocking: a pipe that nobody writes to must not hang the program.
    explicit OpenFile(const fs::path& file)
        : file_(file), descriptor_(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        if (descriptor_ < 0) failReading(file, errno);
    }
    ~OpenFile() { ::close(descriptor_); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    std::size_t plainSize() const {
        struct stat status {};
        if (::fstat(descriptor_, &status) != 0) failReading(file_, errno);
        if (S_ISDIR(status.st_mode)) failReading(file_, EISDIR);
        if (!S_ISREG(status.st_mode)) failReading(file_, EINVAL);
        return static_cast<std::size_t>(status.st_size);
    }

    /// Up to `size` bytes; fewer only at the end of the file.
    std::size_t read(char* to, std::size_t size) const {
        std::size_t done = 0;
        while (done < size) {
            const ssize_t got = ::read(descriptor_, to + done, size - done);
            if (got < 0 && errno == EINTR) continue;
            if (got < 0) failReading(file_, errno);
            if (got == 0) break;
            done += static_cast<std::size_t>(got);
        }
        return done;
    }

  private:
    const fs::path& file_;
    int descriptor_;
};

bool holdsExactly(const fs::path& file, std::string_view bytes) {
    const OpenFile in(file);
    if (in.plainSize() != bytes.size()) return false;
    std::array<char, 65536> buffer;
    while (!bytes.empty()) {
        const std::size_t got = in.read(buffer.data(), std::min(buffer.size(), bytes.size()));
        if (got == 0 || bytes.substr(0, got) != std::string_view(buffer.data(), got)) return false;
        bytes.remove_prefix(got);
    }
    return true;
}

}  // namespace

std::string readWholeFile(const fs::path& file, std::size_t limit) {
    const OpenFile in(file);
    const std::size_t size = in.plainSize();
    if (size > limit) failReading(file, EFBIG);
    std::string bytes(size, '\0');
    bytes.resize(in.read(bytes.data(), size));
    return bytes;
}

void writeWholeFile(const fs::path& file, std::string_view bytes) {
    AtomicFile out(file);
    out.write(bytes.data(), bytes.size());
    out.commit([&](const fs::path& written) {
        if (holdsExactly(written, bytes)) return;
        throw OutputError(fmt::format(
            "{}: reads back other than it was written; check the disk or choose another place",
            file.string()));
    });
}

}  // namespace tavora::studio
