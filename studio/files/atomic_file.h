#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>

#include "studio/files/output_target.h"
#include "studio/files/temporary_file.h"

namespace tavora::studio {

/// A file that appears under its name complete or not at all. It is written under a temporary
/// name in the same folder, with every write checked, flushed to disk, and renamed by commit().
/// When it is destroyed without commit(), its temporary file is removed; after a signal that is
/// done by removeUnfinishedFiles(), and after SIGKILL by the next AtomicFile in the folder. If the
/// target is a symbolic link, the file that it points at is replaced. A replaced file keeps its
/// permissions. One thread at a time.
class AtomicFile {
  public:
    /// Throws Error, Fault::Output, when the temporary file cannot be created, or when `target`
    /// exists and is not a writable plain file.
    explicit AtomicFile(const std::filesystem::path& target);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Throws Error, Fault::Output, when writing fails (for example when the disk is full), and
    /// then for every later call too.
    void write(const void* data, std::size_t size);

    /// The file while it is written. Not for messages, since the user did not choose this name.
    const std::filesystem::path& temporaryPath() const { return temporary_.path(); }

    /// Flushes the file, calls `readBack` with a readable descriptor, renames the file and flushes
    /// its folder. `readBack` throws when the file is not correct. Throws Error, Fault::Output,
    /// and what `readBack` throws. To be called once.
    void commit(const std::function<void(int descriptor)>& readBack = {});

  private:
    void flushFolder() const;
    [[noreturn]] void fail(const char* doing, int error) const;

    std::filesystem::path requested_;  ///< the target as the caller named it, for messages
    OutputTarget target_;
    TemporaryFile temporary_;
    int error_ = 0;  ///< of the first write that failed
};

/// Removes the temporary files of all open AtomicFiles.
/// Safe to call from a signal handler.
void removeUnfinishedFiles() noexcept;

}  // namespace tavora::studio
