#pragma once

#include <filesystem>

namespace tavora::studio {

/// A new file under a temporary name, in the folder that its contents are meant for. It is
/// locked while it is open, which tells it from what a killed process left: making one
/// removes those of this machine that lie in the folder and that nobody holds. Removed
/// with its object unless renamed, and by removeUnfinishedFiles(). One thread at a time.
class TemporaryFile {
  public:
    /// Throws Error, Fault::Output, that names `asked`: the file as the user knows it.
    TemporaryFile(const std::filesystem::path& folder, unsigned permissions,
                  const std::filesystem::path& asked);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Empty once renamed.
    const std::filesystem::path& path() const { return path_; }
    /// Open for reading and writing.
    int descriptor() const { return descriptor_; }

    /// Gives it a name in the same file system, over whatever stands there. False, with
    /// `errno` set, when that fails.
    bool rename(const std::filesystem::path& target) noexcept;

  private:
    bool create(unsigned permissions);

    std::filesystem::path path_;
    int descriptor_ = -1;
    int slot_ = -1;  ///< in the list that a signal handler reads
};

/// Removes the temporary files in `folder` that processes on this machine left when they
/// were killed. Whatever hinders that is no error.
void removeAbandonedFiles(const std::filesystem::path& folder);

}  // namespace tavora::studio
