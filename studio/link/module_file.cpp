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

/// The module's file, when `path` is that file or its folder.
fs::path fileAt(const fs::path& path) {
    std::error_code error;
    return fs::is_directory(path, error) ? path / kFileName : path;
}

void addFilesOfPath(const std::string& path, std::vector<fs::path>& files) {
    for (std::size_t start = 0; start <= path.size();) {
        const std::size_t end = std::min(path.find(':', start), path.size());
        if (end > start) files.push_back(fileAt(path.substr(start, end - start)));
        start = end + 1;
    }
}

void addFileBesideProgram(std::vector<fs::path>& files) {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (!error) files.push_back(program.parent_path() / kFileName);
}

/// The files to try, in order.
std::vector<fs::path> candidateFiles(const std::string& option) {
    std::vector<fs::path> files;
    if (!option.empty()) {
        files.push_back(fileAt(option));
        return files;
    }
    const char* path = std::getenv(kPathVariable);
    if (path != nullptr) addFilesOfPath(path, files);
    if (files.empty()) addFileBesideProgram(files);
    return files;
}

/// The advice when no module was found; a variable that is set is named, since it may be wrong.
const char* adviceFor(const std::string& option) {
    const char* path = std::getenv(kPathVariable);
    if (!option.empty()) return "give --plugin the module or its folder, or leave it out";
    if (path != nullptr && *path != '\0')
        return "set TAVORA_PLUGIN_PATH to the module or its folder, or unset it";
    return "install Tavora again, or name a module with --plugin";
}

}  // namespace

fs::path findModule(const std::string& option) {
    const std::vector<fs::path> files = candidateFiles(option);
    std::vector<std::string> names;
    for (const fs::path& file : files) {
        std::error_code error;
        if (fs::exists(file, error) && !fs::is_directory(file, error)) return file;
        names.push_back(file.string());
    }
    throw Error(Fault::Module, fmt::format("no plug-in module {} found; looked for {}; {}",
                                           kFileName, fmt::join(names, ", "), adviceFor(option)));
}

}  // namespace tavora::studio
