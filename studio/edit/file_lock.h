#pragma once

#include <filesystem>
#include <optional>

namespace tavora::studio {

/// A lock that ends with its process, however that ends: an empty file that
/// stands while it is held. Advisory, for programs that ask. One thread.
class FileLock {
  public:
    /// None when somebody else holds it, or the file cannot be made.
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
