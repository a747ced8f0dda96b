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

#include "studio/files/output_place.h"
#include "studio/files/whole_file.h"
#include "studio/services/block_encoding.h"
#include "studio/services/messages.h"
#include "studio/services/panel_opening.h"
#include "studio/services/service_tables.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;

/// More than the largest settings that a module loads: a million zones and a
/// million names take 150 MB.
constexpr std::size_t kLargestFile = 256U << 20U;

/// What a module writes, until the file is closed. `record` comes first: its
/// address stands for the whole.
struct OpenSave {
    HostSaveState record{};
    fs::path file;
    EncodingWriter writer;
};

struct OpenLoad {
    explicit OpenLoad(std::string bytes) : reader(std::move(bytes)) { record = *reader.record(); }
    HostLoadState record{};
    EncodingReader reader;
};

/// A file that was looked at.
struct FoundFile {
    std::string bytes;
    bool missing = false;
    std::string fault;  ///< why a file that is there cannot be read; empty: it can
};

/// Modules write the separator before the last name as ':'.
fs::path platformPath(const char* path) {
    std::string text = path;
    const std::size_t colon = text.rfind(':');
    const std::size_t slash = text.rfind('/');
    if (colon != std::string::npos && (slash == std::string::npos || slash < colon)) {
        text[colon] = '/';
    }
    return text;
}

/// Only a file that is not there counts as missing: what merely cannot be read
/// is the user's still.
FoundFile lookAt(const fs::path& file) {
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

/// Every new shader meets the file; the user hears of it once, and again when it
/// could be read in between.
void tellOnce(const fs::path& file, const FoundFile& found) {
    static std::mutex mutex;
    static std::set<fs::path> told;
    const std::lock_guard lock(mutex);
    if (found.fault.empty()) {
        told.erase(file);
    } else if (told.insert(file).second) {
        sendMessage(MessageKind::Error,
                    fmt::format("{}: the stored settings cannot be read: {}; they are left as they "
                                "are and the built-in ones stand in; make the file readable or "
                                "remove it",
                                file.string(), found.fault));
    }
}

/// Settings files are binary; scenes keep the settings in themselves.
bool canOpen(const char* path, int ioMode) {
    return path != nullptr && *path != '\0' && ioMode == HOST_IO_OBJECT;
}

void checkReplaceable(const fs::path& file) {
    const FoundFile found = lookAt(file);
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
        outputPlace(save->file);
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
    FoundFile found = lookAt(file);
    if (found.missing) return nullptr;
    tellOnce(file, found);
    if (!found.fault.empty() && !PanelOpening::any()) return nullptr;
    return &std::make_unique<OpenLoad>(std::move(found.bytes)).release()->record;
}

void closeLoad(const HostLoadState* state) {
    delete reinterpret_cast<OpenLoad*>(const_cast<HostLoadState*>(state));
}

}  // namespace

const HostFileIo kFileIo = {openSave, closeSave, openLoad, closeLoad};

}  // namespace tavora::studio
