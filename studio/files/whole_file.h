#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace tavora::studio {

/// The bytes of a plain file of at most `limit` bytes. Throws
/// std::system_error: not there, a folder, too large (EFBIG), read errors.
std::string readWholeFile(const std::filesystem::path& file, std::size_t limit);

/// Writes `bytes` to `file` through an AtomicFile and, before the file gets its
/// name, reads them back and compares. Throws Error, Fault::Output.
void writeWholeFile(const std::filesystem::path& file, std::string_view bytes);

}  // namespace tavora::studio
