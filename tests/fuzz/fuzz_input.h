#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <string_view>
#include <unistd.h>

#include "studio/util/error.h"

namespace tavora::studio {

/// Ends the process, which the fuzzer takes for a find.
inline void require(bool holds) {
    if (!holds) std::abort();
}

/// Runs `body` on an input that it may refuse, but in one line of bounded length.
template <class Body>
void readOrRefuse(const Body& body) {
    try {
        body();
    } catch (const Error& error) {
        const std::string_view text = error.what();
        require(!text.empty() && text.size() < 2000 && text.find('\n') == std::string_view::npos);
    }
}

/// A file of this process with these bytes, in memory where there is such a
/// folder. The next call with the same suffix overwrites it.
inline std::filesystem::path inputFile(std::span<const char> bytes, const std::string& suffix) {
    namespace fs = std::filesystem;
    static const fs::path folder =
        fs::is_directory("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
    const fs::path file = folder / ("tavora-fuzz-" + std::to_string(::getpid()) + suffix);
    std::ofstream(file, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return file;
}

}  // namespace tavora::studio
