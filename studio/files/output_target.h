#pragma once

#include <filesystem>
#include <string>

namespace tavora::studio {

/// The file that is actually written for a requested output file.
struct OutputTarget {
    std::filesystem::path target;  ///< absolute, links followed
    bool replaces = false;         ///< the file exists
    unsigned permissions = 0666;  ///< of the existing file; for a new one before the process's mask
};

/// Determines the target of `requested`. Throws Error, Fault::Output, when that is a folder, a
/// device, or a file without write permission, and when its folder does not exist.
OutputTarget outputTarget(const std::filesystem::path& requested);

/// An error message: the file, what failed (`doing`), the reason of the errno `error`, and what to
/// do about it.
std::string outputMessage(const std::filesystem::path& file, const char* doing, int error);

}  // namespace tavora::studio
