#include <exception>
#include <filesystem>
#include <fmt/format.h>
#include <memory>
#include <mutex>
#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <system_error>

#include "studio/files/output_target.h"
#include "studio/files/whole_file.h"
#include "studio/services/block_encoding.h"
#include "studio/services/messages.h"
#include "studio/services/panel_opening.h"
#include "studio/services/service_tables.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;

/// Larger than the largest settings that a module loads: a million zones and a million names
/// take 150 MB.
constexpr std::size_t kLargestFile = 256U << 20U;

/// A file that a module is writing. `record` must be the first member: the module gets its
/// address, and gives it back to close the file.
struct OpenSave {
    HostSaveState record{};
    fs::path file;
    EncodingWriter writer;
};

/// A file that a module is reading. `record` must be the first member, as in OpenSave.
struct OpenLoad {
    explicit OpenLoad(std::string bytes) : reader(std::move(bytes)) { record = *reader.record(); }
    HostLoadState record{};
    EncodingReader reader;
};

/// The result of reading a file that need not exist.
struct FoundFile {
    std::string bytes;
    bool missing = false;
    std::string fault;  ///< why the file cannot be read; empty when it can
};

/// Converts a path from the module's form, in which the last separator is ':'.
fs::path platformPath(const char* path) {
    std::string text = path;
    const std::size_t colon = text.rfind(':');
    const std::size_t slash = text.rfind('/');
    if (colon != std::string::npos && (slash == std::string::npos || slash < colon)) {
        text[colon] = '/';
    }
    return text;
}

/// A file counts as missing only if it does not exist: a file that cannot be read still
/// belongs to the user and must not be replaced.
FoundFile readIfPresent(const fs::path& file) {
    FoundFile found;
    try {
        found.bytes = readWholeFile(file, kLargestFile);
    } catch (const std::system_error& error) {
        found.missing = error.code() == std::errc::no_such_file_or_directory;
        found.fault = error.code().message();
    } catch (const std::bad_alloc&) {
        found.fault = "not enough memory";
    }
    return found;
}

/// Reports a file that cannot be read: once, although every new shader reads it, and again
/// only after it could be read in between.
void reportFault(const fs::path& file, const FoundFile& found) {
    static std::mutex mutex;
    static std::set<fs::path> reported;
    const std::lock_guard lock(mutex);
    if (found.fault.empty()) {
        reported.erase(file);
    } else if (reported.insert(file).second) {
        sendMessage(MessageKind::Error,
                    fmt::format("{}: the stored settings cannot be read: {}; they are left as they "
                                "are and the built-in ones stand in; make the file readable or "
                                "remove it",
                                file.string(), found.fault));
    }
}

/// Modules open only binary settings files; settings in scenes do not go through files of
/// their own.
bool canOpen(const char* path, int ioMode) {
    return path != nullptr && *path != '\0' && ioMode == HOST_IO_OBJECT;
}

void checkReplaceable(const fs::path& file) {
    const FoundFile found = readIfPresent(file);
    if (found.missing || found.fault.empty()) return;
    throw std::runtime_error(fmt::format(
        "{}: is there but cannot be read: {}; it is not replaced; make it readable or remove it",
        file.string(), found.fault));
}

const HostSaveState* openSave(const char* path, int ioMode) {
    if (!canOpen(path, ioMode)) return nullptr;
    try {
        auto save = std::make_unique<OpenSave>();
        save->file = platformPath(path);
        checkReplaceable(save->file);
        fs::create_directories(save->file.parent_path());
        outputTarget(save->file);
        save->record = *save->writer.record();
        return &save.release()->record;
    } catch (const std::exception& error) {
        sendMessage(MessageKind::Error, error.what());
        return nullptr;
    }
}

void closeSave(const HostSaveState* state) {
    if (state == nullptr) return;
    const std::unique_ptr<OpenSave> save(
        reinterpret_cast<OpenSave*>(const_cast<HostSaveState*>(state)));
    try {
        writeWholeFile(save->file, save->writer.bytes());
    } catch (const std::exception& error) {
        sendMessage(MessageKind::Error, error.what());
    }
}

const HostLoadState* openLoad(const char* path, int ioMode) {
    if (!canOpen(path, ioMode)) return nullptr;
    const fs::path file = platformPath(path);
    FoundFile found = readIfPresent(file);
    if (found.missing) return nullptr;
    reportFault(file, found);
    if (!found.fault.empty() && !PanelOpening::any()) return nullptr;
    return &std::make_unique<OpenLoad>(std::move(found.bytes)).release()->record;
}

void closeLoad(const HostLoadState* state) {
    delete reinterpret_cast<OpenLoad*>(const_cast<HostLoadState*>(state));
}

}  // namespace

const HostFileIo kFileIo = {openSave, closeSave, openLoad, closeLoad};

}  // namespace tavora::studio
