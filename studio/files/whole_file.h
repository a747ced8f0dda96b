#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace tavora::studio {

/// Reads a plain file. Throws std::system_error when it cannot be read, or has more than `limit`
/// bytes (EFBIG).
std::string readWholeFile(const std::filesystem::path& file, std::size_t limit);

/// Writes a file by AtomicFile; before the rename, reads the bytes back and compares them. Throws
/// Error, Fault::Output.
void writeWholeFile(const std::filesystem::path& file, std::string_view bytes);

}  // namespace tavora::studio
