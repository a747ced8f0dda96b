#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>

namespace tavora::studio {

/// A new file with a temporary name, in the folder of the final file. It is locked while it is
/// open, which distinguishes it from files that a killed process left: the constructor removes
/// unlocked ones of this machine from the folder. The file is removed by the destructor, unless it
/// was renamed, and by removeUnfinishedFiles(). One thread at a time.
class TemporaryFile {
  public:
    /// Throws Error, Fault::Output, that names `requested`, the final file as the user named it.
    TemporaryFile(const std::filesystem::path& folder, unsigned permissions,
                  const std::filesystem::path& requested);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Empty once renamed.
    const std::filesystem::path& path() const { return path_; }
    /// Open for reading and writing.
    int descriptor() const { return descriptor_; }

    /// Renames the file to a name in the same file system, replacing any file there. False, with
    /// `errno` set, when that fails.
    bool rename(const std::filesystem::path& target) noexcept;

  private:
    bool create(unsigned permissions);

    std::filesystem::path path_;
    int descriptor_ = -1;
    std::optional<std::size_t> slot_;  ///< from listUnfinished()
};

/// Removes the temporary files in `folder` that killed processes on this machine left. Errors are
/// ignored.
void removeAbandonedFiles(const std::filesystem::path& folder);

}  // namespace tavora::studio
