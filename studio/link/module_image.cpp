#include "studio/link/module_image.h"

#include <cstdint>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <string>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "studio/link/segment_extents.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;

constexpr const char* kReinstall = "reinstall it or name another with --plugin";

/// Copies all bytes of `file` to `target`; false on any read or write error.
bool copyBytes(const fs::path& file, int target) {
    const int source = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (source < 0) return false;
    struct stat info {};
    off_t done = 0;
    bool good = fstat(source, &info) == 0;
    while (good && done < info.st_size) {
        const auto left = static_cast<std::size_t>(info.st_size - done);
        good = sendfile(target, source, &done, left) > 0;
    }
    close(source);
    return good;
}

void* loadImage(const std::string& path) {
    return dlopen(path.c_str(), RTLD_LOCAL | RTLD_NOW);
}

/// A path of descriptor `number` that the loader has not seen: the plain path may still belong to
/// an image that was never unloaded.
std::string unusedName(int number) {
    std::string folder = "/proc/self/fd/";
    for (;;) {
        std::string name = folder + std::to_string(number);
        void* loaded = dlopen(name.c_str(), RTLD_LOCAL | RTLD_NOW | RTLD_NOLOAD);
        if (loaded == nullptr) return name;
        dlclose(loaded);
        folder += "./";
    }
}

/// The loader's last message, without the path under which it loaded the file.
std::string loaderMessage() {
    const char* text = dlerror();
    std::string message = text == nullptr ? "unknown reason" : text;
    if (!message.empty() && message.front() == '/') {
        const auto colon = message.find(": ");
        if (colon != std::string::npos) message.erase(0, colon + 2);
    }
    return message;
}

bool hasAllSegments(int copy) {
    struct stat info {};
    return fstat(copy, &info) == 0 &&
           static_cast<std::uint64_t>(info.st_size) >= minModuleSize(copy);
}

void checkFile(const fs::path& file) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status)) {
        throw Error(Fault::Module,
                    fmt::format("{}: no such plug-in module; name one with --plugin or "
                                "TAVORA_PLUGIN_PATH",
                                file.string()));
    }
    if (!fs::is_regular_file(status)) {
        throw Error(Fault::Module,
                    fmt::format("{}: not a plug-in module but a folder or device; name the "
                                "module's own file",
                                file.string()));
    }
    if (access(file.c_str(), R_OK) != 0) {
        throw Error(Fault::Module,
                    fmt::format("{}: the plug-in module cannot be read; check its permissions",
                                file.string()));
    }
}

}  // namespace

ModuleImage::ModuleImage(const fs::path& file) : file_(file) {
    checkFile(file_);
    try {
        load();
        findDescriptor();
    } catch (...) {
        if (image_ != nullptr) dlclose(image_);
        if (memory_ >= 0) close(memory_);
        throw;
    }
}

ModuleImage::~ModuleImage() {
    dlclose(image_);
    if (memory_ >= 0) close(memory_);
}

void ModuleImage::load() {
    image_ = loadFromMemory();
    // Some systems forbid executing code in memory files.
    if (image_ == nullptr) image_ = loadFromTemporaryFile();
    if (image_ == nullptr) {
        throw Error(Fault::Module, fmt::format("{}: not a loadable plug-in module ({}); {}",
                                               file_.string(), loaderMessage(), kReinstall));
    }
}

void* ModuleImage::loadFromMemory() {
    memory_ = memfd_create("plugin", MFD_CLOEXEC);
    if (memory_ < 0 || !copyBytes(file_, memory_)) return nullptr;
    if (!hasAllSegments(memory_)) {
        throw Error(Fault::Module,
                    fmt::format("{}: a damaged plug-in module: it ends before its last segment; {}",
                                file_.string(), kReinstall));
    }
    return loadImage(unusedName(memory_));
}

void* ModuleImage::loadFromTemporaryFile() {
    std::error_code error;
    std::string name = (fs::temp_directory_path(error) / "tavora-plugin-XXXXXX").string();
    const int file = error ? -1 : mkostemp(name.data(), O_CLOEXEC);
    if (file < 0) {
        throw Error(Fault::Module,
                    fmt::format("{}: the plug-in module cannot be loaded: no room for a "
                                "temporary file; set TMPDIR to a folder with space",
                                file_.string()));
    }
    const bool whole = copyBytes(file_, file) && hasAllSegments(file);
    close(file);
    void* image = whole ? loadImage(name) : nullptr;
    unlink(name.c_str());
    return image;
}

void ModuleImage::findDescriptor() {
    descriptor_ = static_cast<const HostModuleDescriptor*>(dlsym(image_, HOST_MODULE_SYMBOL));
    if (descriptor_ == nullptr) {
        throw Error(Fault::Module, fmt::format("{}: not a plug-in module: it has no symbol {}",
                                               file_.string(), HOST_MODULE_SYMBOL));
    }
    if (descriptor_->sync != HOST_MODULE_SYNC) {
        throw Error(Fault::Module,
                    fmt::format("{}: not a plug-in module: its descriptor starts with {:#x}, "
                                "not {:#x}",
                                file_.string(), descriptor_->sync, int{HOST_MODULE_SYNC}));
    }
    if (descriptor_->version != HOST_MODULE_VERSION ||
        descriptor_->machine != HOST_MODULE_MACHINE) {
        throw Error(Fault::Module,
                    fmt::format("{}: made for another host: descriptor version {} for machine "
                                "{:#x}, this host takes version {} for machine {:#x}",
                                file_.string(), descriptor_->version, descriptor_->machine,
                                int{HOST_MODULE_VERSION}, int{HOST_MODULE_MACHINE}));
    }
    if (descriptor_->startup == nullptr || descriptor_->shutdown == nullptr ||
        descriptor_->servers == nullptr) {
        throw Error(Fault::Module,
                    fmt::format("{}: a damaged plug-in module: its descriptor lacks functions; "
                                "{}",
                                file_.string(), kReinstall));
    }
}

}  // namespace tavora::studio
