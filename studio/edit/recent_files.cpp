#include "studio/edit/recent_files.h"

#include <algorithm>
#include <exception>
#include <sstream>
#include <string>

#include "studio/files/whole_file.h"
#include "studio/services/directory_info.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t kMostFiles = 10;
constexpr std::size_t kMostBytes = 1 << 20;

/// The file has one path a line, unquoted, so that a path may have any bytes but line breaks.
fs::path listFile(const fs::path& folder) {
    return folder / "recent-scenes";
}

std::vector<fs::path> readList(const fs::path& file) {
    std::istringstream text(readWholeFile(file, kMostBytes));
    std::vector<fs::path> scenes;
    for (std::string line; scenes.size() < kMostFiles && std::getline(text, line);) {
        if (fs::path(line).is_absolute()) scenes.emplace_back(line);
    }
    return scenes;
}

}  // namespace

std::vector<fs::path> recentFiles() {
    const std::optional<fs::path> folder = settingsFolder();
    if (!folder) return {};
    try {
        return readList(listFile(*folder));
    } catch (const std::exception&) {
        return {};
    }
}

void addRecentFile(const fs::path& scene) {
    const std::optional<fs::path> folder = settingsFolder();
    std::error_code error;
    const fs::path whole = fs::absolute(scene, error).lexically_normal();
    if (!folder || error || whole.string().find('\n') != std::string::npos) return;
    std::string text = whole.string() + '\n';
    std::size_t count = 1;
    for (const fs::path& other : recentFiles()) {
        if (other == whole || ++count > kMostFiles) continue;
        text += other.string() + '\n';
    }
    try {
        fs::create_directories(*folder);
        writeWholeFile(listFile(*folder), text);
    } catch (const std::exception&) {
        // The list is not important enough to report an error.
    }
}

}  // namespace tavora::studio
