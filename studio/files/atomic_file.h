#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>

#include "studio/files/output_place.h"
#include "studio/files/temporary_file.h"

namespace tavora::studio {

/// A file that appears under its name complete or not at all: it is written
/// under a temporary name in the same folder, every write checked, flushed to
/// disk, and renamed by commit(). Destroyed without commit, it leaves nothing;
/// so does a signal, through removeUnfinishedFiles(), and what SIGKILL leaves, the
/// next AtomicFile in the folder removes. A link is followed: the file it points
/// at is replaced. A file that stood there keeps its permissions. One thread at a
/// time.
class AtomicFile {
  public:
    /// Throws Error, Fault::Output when the temporary file cannot be made, or when
    /// something other than a writable plain file stands at `target`.
    explicit AtomicFile(const std::filesystem::path& target);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Throws Error, Fault::Output (disk full and the like), then and at every later call.
    void write(const void* data, std::size_t size);

    /// The file while it is being written. Not for messages: the user never named it.
    const std::filesystem::path& temporaryPath() const { return temporary_.path(); }

    /// Flushes, lets `readBack` look at the file through a descriptor that can be
    /// read (it throws when the file is not as it should be), renames, flushes the
    /// folder. Throws Error, Fault::Output, and what `readBack` throws. Once.
    void commit(const std::function<void(int descriptor)>& readBack = {});

  private:
    void flushFolder() const;
    [[noreturn]] void fail(const char* doing, int error) const;

    std::filesystem::path asked_;  ///< as the caller named it, for messages
    OutputPlace place_;
    TemporaryFile temporary_;
    int error_ = 0;  ///< of the first write that failed
};

/// Removes the temporary files of all AtomicFiles that are open.
/// Safe to call from a signal handler.
void removeUnfinishedFiles() noexcept;

}  // namespace tavora::studio
