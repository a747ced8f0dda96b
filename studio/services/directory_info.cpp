#include "studio/services/directory_info.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "studio/services/service_tables.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;

fs::path overridden;

/// Empty when unset.
fs::path fromEnvironment(const char* variable) {
    const char* value = std::getenv(variable);
    return value == nullptr ? fs::path() : fs::path(value);
}

std::string withoutEndSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

}  // namespace

void setSettingsFolder(const fs::path& folder) {
    overridden = folder;
}

std::optional<fs::path> settingsFolder() {
    if (!overridden.empty()) return overridden;
    if (fs::path folder = fromEnvironment("TAVORA_DEFAULTS"); !folder.empty()) return folder;
    // Desktop programs agree (XDG base directories) to ignore relative paths.
    if (const fs::path base = fromEnvironment("XDG_CONFIG_HOME"); base.is_absolute()) {
        return base / "tavora";
    }
    if (const fs::path home = fromEnvironment("HOME"); home.is_absolute()) {
        return home / ".config" / "tavora";
    }
    return std::nullopt;
}

const char* directoryInfo(const char* directoryName) {
    thread_local std::string answer;
    if (directoryName == nullptr || std::strcmp(directoryName, HOST_DIRECTORY_SETTINGS) != 0) {
        return nullptr;
    }
    if (HiddenSettingsFolder::any()) return nullptr;
    const std::optional<fs::path> folder = settingsFolder();
    if (!folder) return nullptr;
    answer = withoutEndSlash(folder->string());
    // clang-tidy 14 takes thread_local for a local of the function.
    return answer.c_str();  // NOLINT(clang-analyzer-cplusplus.InnerPointer)
}

}  // namespace tavora::studio
