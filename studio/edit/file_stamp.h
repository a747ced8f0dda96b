#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace tavora::studio {

/// How a file stood on the disk when it was read.
struct FileStamp {
    std::uintmax_t size = 0;
    std::filesystem::file_time_type written;
    std::uint64_t hash = 0;  ///< of its bytes (FNV-1a)
};

/// Throws Error when the file cannot be read.
FileStamp stampOf(const std::filesystem::path& file);

/// Whether the bytes are still those; they are read only when size or time
/// differ. Throws Error when the file is gone or cannot be read.
bool isUnchanged(const std::filesystem::path& file, const FileStamp& stamp);

/// FNV-1a of a text, for names of files and the like.
std::uint64_t hashOf(std::string_view bytes);

}  // namespace tavora::studio
