#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>

namespace tavora::studio {

/// A file that appears under its name complete or not at all: it is written
/// under a temporary name in the same folder, every write checked, flushed to
/// disk, and renamed by commit(). Destroyed without commit, it leaves nothing;
/// so does a signal, through removeUnfinishedFiles(). One thread at a time.
class AtomicFile {
  public:
    /// Throws OutputError when the temporary file cannot be made.
    explicit AtomicFile(const std::filesystem::path& target);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Throws OutputError (disk full and the like), then and at every later call.
    void write(const void* data, std::size_t size);
    void seek(std::size_t offset);
    std::size_t position() const { return position_; }

    /// The file while it is being written, for reading back.
    const std::filesystem::path& temporaryPath() const { return temporary_; }

    /// Flushes, lets `readBack` look at the temporary file (it throws when the
    /// file is not as it should be), renames, flushes the folder.
    void commit(const std::function<void(const std::filesystem::path&)>& readBack = {});

  private:
    [[noreturn]] void fail(const char* doing);

    std::filesystem::path target_;
    std::filesystem::path temporary_;
    int descriptor_ = -1;
    std::size_t position_ = 0;
};

/// Removes the temporary files of all AtomicFiles that are open.
/// Safe to call from a signal handler.
void removeUnfinishedFiles() noexcept;

}  // namespace tavora::studio
