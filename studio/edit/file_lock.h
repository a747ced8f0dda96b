#pragma once

#include <filesystem>
#include <optional>

namespace tavora::studio {

/// A lock that is released when its process ends, in whatever way: an empty file, locked by
/// flock(), which exists as long as the lock is held. Advisory. One thread.
class FileLock {
  public:
    /// Empty when another process holds the lock, or the file cannot be created.
    static std::optional<FileLock> take(const std::filesystem::path& file);

    ~FileLock();
    FileLock(FileLock&& other) noexcept;
    FileLock& operator=(FileLock&& other) noexcept;

  private:
    FileLock(std::filesystem::path file, int descriptor);

    std::filesystem::path file_;
    int descriptor_;
};

}  // namespace tavora::studio
