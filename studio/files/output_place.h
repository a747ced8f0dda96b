#pragma once

#include <filesystem>
#include <string>

namespace tavora::studio {

/// Where a file that is to be written really goes.
struct OutputPlace {
    std::filesystem::path target;  ///< absolute, links followed
    bool replaces = false;         ///< a file stands there now
    unsigned permissions = 0666;   ///< of that file; else what the process's mask cuts
};

/// Looks at what stands at `asked`. Throws Error, Fault::Output for a folder, a device,
/// a file without write permission, a folder that is missing.
OutputPlace outputPlace(const std::filesystem::path& asked);

/// One line: file, what could not be done to it, why, what to do.
std::string outputMessage(const std::filesystem::path& file, const char* doing, int error);

}  // namespace tavora::studio
