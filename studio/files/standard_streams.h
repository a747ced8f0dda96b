#pragma once

#include <cstddef>
#include <exception>
#include <filesystem>
#include <string>
#include <string_view>

/// The standard streams. They are used without the C library's buffers, so that every failure is
/// detected where it happens.
namespace tavora::studio {

/// Thrown when the reader of standard output has closed it, as `head` does; that is no error.
class ReaderGone : public std::exception {
  public:
    const char* what() const noexcept override { return "nobody reads standard output any more"; }
};

/// Whether a file name is "-", which means standard input for reading and standard output for
/// writing.
inline bool isStream(const std::filesystem::path& file) {
    return file == "-";
}

/// Opens those of the descriptors 0, 1 and 2 with which the program was not started. Otherwise the
/// next file that is opened would get such a descriptor, and messages would be written into it.
/// Messages to a missing standard error are lost; using a missing standard input or output still
/// fails. To be called before any file is opened.
void openMissingStreams() noexcept;

/// Writes `text` to standard error. Failures are ignored. Any thread; safe in signal handlers.
void writeError(std::string_view text) noexcept;

/// Writes data to standard output. Throws ReaderGone, or Error, Fault::Output, when not all of it
/// could be written. One thread at a time.
void writeOut(std::string_view bytes);

/// To be called before the work for an output: throws Error, Fault::Output, when standard output
/// is closed or read-only.
void checkStandardOutput();

/// Reads all of standard input. Throws std::system_error when it cannot be read, or has more than
/// `limit` bytes (EFBIG).
std::string readStandardInput(std::size_t limit);

}  // namespace tavora::studio
