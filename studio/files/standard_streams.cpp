#include "studio/files/standard_streams.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>

#include "studio/files/output_target.h"
#include "studio/files/system_calls.h"
#include "studio/files/written_mark.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

constexpr const char* kOutputName = "standard output";

// Whether to repeat a call that failed. Another program may have made a shared stream
// non-blocking; then this function waits until it is ready.
bool shouldRetry(int descriptor, short event) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN) return false;
    pollfd ready{descriptor, event, 0};
    return ::poll(&ready, 1, -1) > 0 || errno == EINTR;
}

[[noreturn]] void failWriting(int error) {
    if (error == EPIPE) throw ReaderGone();
    throw Error(Fault::Output, outputMessage(kOutputName, "cannot be written", error));
}

}  // namespace

void openMissingStreams() noexcept {
    // open() returns the lowest free descriptor. Reading from 0 and writing to 1 must still fail,
    // so these are opened for the opposite.
    constexpr int kModes[] = {O_WRONLY, O_RDONLY, O_WRONLY};
    for (int descriptor = 0; descriptor <= STDERR_FILENO; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) < 0 && errno == EBADF) {
            [[maybe_unused]] const int opened = ::open("/dev/null", kModes[descriptor]);
        }
    }
}

void writeError(std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t written =
            uninterrupted([&] { return ::write(STDERR_FILENO, text.data(), text.size()); });
        if (written <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

void writeOut(std::string_view bytes) {
    markWritten();
    while (!bytes.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (written < 0 && shouldRetry(STDOUT_FILENO, POLLOUT)) continue;
        if (written <= 0) failWriting(written < 0 ? errno : EIO);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    if (!checkClose(STDOUT_FILENO)) failWriting(errno);
}

void checkStandardOutput() {
    const int flags = ::fcntl(STDOUT_FILENO, F_GETFL);
    if (flags < 0 || (flags & O_ACCMODE) == O_RDONLY) failWriting(EBADF);
}

std::string readStandardInput(std::size_t limit) {
    constexpr std::size_t kFirst = std::size_t{1} << 16;
    std::string bytes;
    std::size_t size = 0;
    for (;;) {
        if (size == bytes.size()) bytes.resize(std::max(kFirst, 2 * size));
        const ssize_t got = ::read(STDIN_FILENO, bytes.data() + size, bytes.size() - size);
        if (got < 0 && shouldRetry(STDIN_FILENO, POLLIN)) continue;
        if (got < 0) throw std::system_error(errno, std::generic_category());
        if (got == 0) break;
        size += static_cast<std::size_t>(got);
        if (size > limit) throw std::system_error(EFBIG, std::generic_category());
    }
    bytes.resize(size);
    return bytes;
}

}  // namespace tavora::studio
