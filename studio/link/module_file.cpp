#include "studio/link/module_file.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <system_error>

#include "studio/util/error.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFileName = "tavora.so";
constexpr const char* kPathVariable = "TAVORA_PLUGIN_PATH";

/// A place names the module's file, or the folder that holds it.
fs::path fileAt(const fs::path& place) {
    std::error_code error;
    return fs::is_directory(place, error) ? place / kFileName : place;
}

void addPlacesOfPath(const std::string& path, std::vector<fs::path>& places) {
    for (std::size_t start = 0; start <= path.size();) {
        const std::size_t end = std::min(path.find(':', start), path.size());
        if (end > start) places.push_back(fileAt(path.substr(start, end - start)));
        start = end + 1;
    }
}

void addPlaceBesideProgram(std::vector<fs::path>& places) {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (!error) places.push_back(program.parent_path() / kFileName);
}

/// In the order in which they count.
std::vector<fs::path> placesToLook(const std::string& option) {
    std::vector<fs::path> places;
    if (!option.empty()) {
        places.push_back(fileAt(option));
        return places;
    }
    const char* path = std::getenv(kPathVariable);
    if (path != nullptr) addPlacesOfPath(path, places);
    if (places.empty()) addPlaceBesideProgram(places);
    return places;
}

/// Whoever set the variable must learn that it leads nowhere.
const char* adviceFor(const std::string& option) {
    const char* path = std::getenv(kPathVariable);
    if (!option.empty()) return "give --plugin the module or its folder, or leave it out";
    if (path != nullptr && *path != '\0')
        return "set TAVORA_PLUGIN_PATH to the module or its folder, or unset it";
    return "install Tavora again, or name a module with --plugin";
}

}  // namespace

fs::path findModule(const std::string& option) {
    const std::vector<fs::path> places = placesToLook(option);
    std::vector<std::string> names;
    for (const fs::path& place : places) {
        std::error_code error;
        if (fs::exists(place, error) && !fs::is_directory(place, error)) return place;
        names.push_back(place.string());
    }
    throw Error(Fault::Module, fmt::format("no plug-in module {} found; looked for {}; {}",
                                           kFileName, fmt::join(names, ", "), adviceFor(option)));
}

}  // namespace tavora::studio
