#include <exception>
#include <filesystem>
#include <memory>
#include <string>

#include "studio/files/output_error.h"
#include "studio/files/output_place.h"
#include "studio/files/whole_file.h"
#include "studio/link/state_block.h"
#include "studio/services/block_encoding.h"
#include "studio/services/messages.h"
#include "studio/services/service_tables.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;

/// More than any settings need.
constexpr std::size_t kLargestFile = 64U << 20U;

/// What a module writes, until the file is closed. `record` comes first: its
/// address stands for the whole.
struct OpenSave {
    HostSaveState record{};
    fs::path file;
    StateBlock block;
    BlockWriter writer{block};
};

struct OpenLoad {
    HostLoadState record{};
    StateBlock block;
    std::unique_ptr<BlockReader> reader;
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

/// Settings files are binary; scenes keep the settings in themselves.
bool canOpen(const char* path, int ioMode) {
    return path != nullptr && *path != '\0' && ioMode == HOST_IO_OBJECT;
}

const HostSaveState* openSave(const char* path, int ioMode) {
    if (!canOpen(path, ioMode)) return nullptr;
    try {
        auto save = std::make_unique<OpenSave>();
        save->file = platformPath(path);
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
        writeWholeFile(save->file, encodeBlock(save->block));
    } catch (const std::exception& error) {
        sendMessage(MessageKind::Error, error.what());
    }
}

const HostLoadState* openLoad(const char* path, int ioMode) {
    if (!canOpen(path, ioMode)) return nullptr;
    try {
        auto load = std::make_unique<OpenLoad>();
        load->block = decodeBlock(readWholeFile(platformPath(path), kLargestFile));
        load->reader = std::make_unique<BlockReader>(load->block);
        load->record = *load->reader->record();
        return &load.release()->record;
    } catch (const std::exception&) {
        // Missing and unreadable files are ordinary: the caller says so.
        return nullptr;
    }
}

void closeLoad(const HostLoadState* state) {
    delete reinterpret_cast<OpenLoad*>(const_cast<HostLoadState*>(state));
}

}  // namespace

const HostFileIo kFileIo = {openSave, closeSave, openLoad, closeLoad};

}  // namespace tavora::studio
