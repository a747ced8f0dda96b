#pragma once

#include <cstddef>
#include <exception>
#include <filesystem>
#include <string>
#include <string_view>

/// The three streams that a program starts with. They are written and read without the
/// C library's buffers, so that every failure is seen where it happens.
namespace tavora::studio {

/// Whoever read standard output has closed it, as `head` does once it has enough: no fault.
class ReaderGone : public std::exception {
  public:
    const char* what() const noexcept override { return "nobody reads standard output any more"; }
};

/// Whether a file's name on the command line is "-": standard input where something is
/// read, standard output where it is written.
inline bool isStream(const std::filesystem::path& file) {
    return file == "-";
}

/// Opens those of the descriptors 0, 1 and 2 that the program was started without, since the
/// next file opened would take such a number and be written messages into. What is said on a
/// missing standard error is lost; using a missing input or output still fails. Before
/// anything else opens a file.
void openMissingStreams() noexcept;

/// Says `text` on standard error. A closed or full one loses it and changes nothing else.
/// Any thread, and signal handlers.
void writeError(std::string_view text) noexcept;

/// Writes data to standard output. Throws ReaderGone, or Fault::Output when not all of it
/// gets there. One thread at a time.
void writeOut(std::string_view bytes);

/// Fails early, before there is something to write: throws Fault::Output when standard output
/// is closed or was opened for reading only.
void checkStandardOutput();

/// All of standard input, at most `limit` bytes. Throws std::system_error: closed, a folder,
/// too large (EFBIG), read errors.
std::string readStandardInput(std::size_t limit);

}  // namespace tavora::studio
