#include "persist/default_settings.h"

#include <cstdio>
#include <cstring>

#include "persist/state_block.h"
#include "plugin/record/services.h"

namespace tavora {
namespace {

constexpr const char* directoryMissing = "Settings directory not found";
constexpr const char* notLoaded = "Default settings not loaded!";

constexpr const char* fileName = "tavo.default";

/// The file's path, where there is one. The directory service must be there.
class DefaultPath {
  public:
    DefaultPath() {
        const char* directory = dirinfo(HOST_DIRECTORY_SETTINGS);
        if (directory == nullptr) return;
        const int length = std::snprintf(text_, sizeof text_, "%s:%s", directory, fileName);
        // A path that does not fit counts as none.
        if (length < 0 || static_cast<std::size_t>(length) >= sizeof text_) text_[0] = '\0';
    }
    bool exists() const { return text_[0] != '\0'; }
    const char* text() const { return text_; }
    /// The text's part in front of the file's name.
    int folderLength() const {
        return static_cast<int>(std::strlen(text_) - std::strlen(fileName)) - 1;
    }

  private:
    char text_[1024] = {};
};

void reportRefusal(LoadOutcome outcome, const DefaultPath& path) {
    char remedy[1200];
    std::snprintf(remedy, sizeof remedy,
                  "Delete \"%s\" in the folder %.*s, or press \"Set as Default\" in a panel",
                  fileName, path.folderLength(), path.text());
    msg->error(outcome == LoadOutcome::damaged
                   ? "Tavora: the stored default settings are damaged and were not loaded"
                   : "Tavora: not enough memory to load the stored default settings",
               outcome == LoadOutcome::damaged ? remedy : nullptr);
}

/// Reads the file into the record. False when it is there to be opened but
/// does not open.
bool loadFile(ShaderInstance* instance) {
    const DefaultPath path;
    if (!path.exists()) return true;
    const HostLoadState* state = fiof->openLoad(path.text(), HOST_IO_OBJECT);
    if (state == nullptr) return false;
    const LoadOutcome outcome = loadBlock(*instance, *state);
    fiof->closeLoad(state);
    if (outcome != LoadOutcome::complete) reportRefusal(outcome, path);
    return true;
}

bool opens(const DefaultPath& path) {
    const HostLoadState* state = fiof->openLoad(path.text(), HOST_IO_OBJECT);
    if (state == nullptr) return false;
    fiof->closeLoad(state);
    return true;
}

}  // namespace

int cb_setDefault(HostControlId /*control*/, ShaderInstance* instance) {
    if (fiof == nullptr) return 2;
    if (dirinfo == nullptr) {
        msg->warning(directoryMissing, "Default settings not saved!");
        return 0;
    }
    const DefaultPath path;
    if (!path.exists()) return 1;
    const HostSaveState* state = fiof->openSave(path.text(), HOST_IO_OBJECT);
    if (state == nullptr) {
        msg->error("Cound not open file for save", "Creating file");
        return 1;
    }
    Save(instance, state);
    fiof->closeSave(state);
    return 1;
}

int loadDefaultSettings(ShaderInstance* instance) {
    if (fiof == nullptr) return 2;
    if (dirinfo == nullptr) {
        msg->warning(directoryMissing, notLoaded);
    } else if (!loadFile(instance)) {
        return 0;
    }
    instance->zoneCursor = instance->zoneList;
    return 1;
}

void ensureDefaultSettings(ShaderInstance* instance) {
    if (iteminfo == nullptr) return;
    if (dirinfo == nullptr) {
        msg->warning(directoryMissing, notLoaded);
        return;
    }
    const DefaultPath path;
    if (!path.exists() || opens(path)) return;
    msg->warning("Default settings file not found", "Creating default file.");
    cb_setDefault(nullptr, instance);
}

}  // namespace tavora
