#include "studio/edit/recovery.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <system_error>

#include "studio/edit/steps.h"
#include "studio/files/temporary_file.h"
#include "studio/files/whole_file.h"
#include "studio/util/error.h"
#include "studio/util/hash.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

constexpr int kMostSessions = 16;  // on one scene, the dead counted in
constexpr std::size_t kMostBytes = std::size_t{1} << 30;
constexpr std::size_t kMostNameBytes = 100;  // of the scene's name, for people
constexpr const char* kLockSuffix = ".lock";

/// Empty when the environment names none. By the rules for base directories,
/// relative paths are to be ignored.
fs::path recoveryFolder() {
    const char* state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && fs::path(state).is_absolute()) {
        return fs::path(state) / "tavora/recovery";
    }
    const char* home = std::getenv("HOME");
    if (home == nullptr || !fs::path(home).is_absolute()) return {};
    return fs::path(home) / ".local/state/tavora/recovery";
}

std::string baseName(const fs::path& scene) {
    std::error_code ignored;
    fs::path whole = fs::weakly_canonical(scene, ignored);
    if (whole.empty()) whole = fs::absolute(scene);
    const std::string name = scene.filename().string().substr(0, kMostNameBytes);
    return fmt::format("{}-{:016x}", name, hashOf(whole.string()));
}

/// Locks of dead sessions that left no work. Those beside work are left to the
/// session that is offered it.
void removeStaleLocks(const fs::path& folder) {
    try {
        for (const auto& entry : fs::directory_iterator(folder)) {
            fs::path file = entry.path();
            if (file.extension() != kLockSuffix || fs::exists(file.replace_extension())) continue;
            FileLock::take(entry.path());  // removes it when it lets go
        }
    } catch (const fs::filesystem_error&) {
        // A folder that is not there holds none.
    }
}

UnsavedWork readWork(const fs::path& file) {
    try {
        return readUnsavedWork(readWholeFile(file, kMostBytes), file.string());
    } catch (const std::system_error& error) {
        throw Error(Fault::Scene,
                    fmt::format("{}: cannot be read: {}", file.string(), error.code().message()));
    }
}

std::optional<std::size_t> surfaceNamed(const SceneSettings& settings, const std::string& name) {
    for (const std::size_t i : settings.surfaces()) {
        if (settings.scene().surfaces[i].name == name) return i;
    }
    return std::nullopt;
}

}  // namespace

/// A place of this scene that no living session holds, with a dead one's work or free.
std::optional<Recovery::Place> Recovery::findPlace(bool withWork) const {
    const fs::path folder = recoveryFolder();
    const std::string base = baseName(file_.path());
    std::error_code ignored;
    for (int i = 1; i <= kMostSessions && !folder.empty(); ++i) {
        const fs::path file = folder / fmt::format("{}-{}.json", base, i);
        if (fs::exists(file, ignored) != withWork) continue;
        auto lock = FileLock::take(file.string() + kLockSuffix);
        if (lock && fs::exists(file, ignored) == withWork) return Place{file, std::move(*lock)};
    }
    return std::nullopt;
}

/// A file keeps no surface without shader where it had one: that is turned off there.
bool Recovery::isSaved(const Place& place) const {
    try {
        const UnsavedWork work = readWork(place.file);
        return std::all_of(work.surfaces.begin(), work.surfaces.end(), [this](const auto& one) {
            const auto surface = surfaceNamed(settings_, one.first);
            if (!surface) return false;
            const std::optional<SurfaceShader>& saved = settings_.saved(*surface);
            return one.second ? settings_.settled(one.second) == saved : !activeBlock(saved);
        });
    } catch (const Error&) {
        return false;  // takeOver() says what is wrong
    }
}

bool Recovery::isOffered() {
    if (left_) return true;
    std::error_code ignored;
    removeAbandonedFiles(recoveryFolder());
    removeAbandonedFiles(fs::weakly_canonical(file_.path(), ignored).parent_path());
    removeStaleLocks(recoveryFolder());
    do {
        left_ = findPlace(true);
    } while (left_ && isSaved(*left_) && fs::remove(left_->file, ignored));
    return left_.has_value();
}

std::vector<std::string> Recovery::takeOver() {
    if (!isOffered()) throw Error(Fault::Scene, "there is no unsaved work to recover");
    UnsavedWork work;
    try {
        work = readWork(left_->file);
    } catch (const Error& error) {
        setAside(error.what());
    }
    const std::string scene = file_.path().string();
    std::vector<std::string> warnings;
    if (work.sceneHash != file_.stamp().hash || work.sceneSize != file_.stamp().size) {
        warnings.push_back(scene + ": was changed since this work was done on it");
    }
    ShaderChanges changes;
    for (auto& [name, shader] : work.surfaces) {
        if (const auto surface = surfaceNamed(settings_, name)) {
            changes.emplace_back(*surface, std::move(shader));
        } else {
            warnings.push_back(fmt::format("{}: no longer has the surface \"{}\"", scene, name));
        }
    }
    const std::optional<Place> before = std::exchange(own_, std::exchange(left_, std::nullopt));
    written_.reset();
    undo_.push(settingsStep(settings_, changes, "recovery"));
    if (before) {
        write();
        std::error_code ignored;
        fs::remove(before->file, ignored);
    }
    return warnings;
}

void Recovery::setAside(const std::string& why) {
    const fs::path aside = left_->file.string() + ".damaged";
    std::error_code ignored;
    fs::rename(left_->file, aside, ignored);
    left_.reset();
    throw Error(Fault::Scene,
                fmt::format("the unsaved work cannot be recovered: {}; it is kept as {}", why,
                            aside.string()));
}

void Recovery::discard() {
    clear();
    std::error_code ignored;
    if (isOffered()) fs::remove(left_->file, ignored);
    left_.reset();
}

UnsavedWork Recovery::unsavedWork() const {
    UnsavedWork work{fs::absolute(file_.path()), file_.stamp().size, file_.stamp().hash, {}};
    for (const std::size_t i : settings_.surfaces()) {
        if (!settings_.isUnsaved(i)) continue;
        work.surfaces.emplace_back(settings_.scene().surfaces[i].name, settings_.at(i));
    }
    return work;
}

void Recovery::write() {
    if (!settings_.isModified()) return clear();
    UnsavedWork work = unsavedWork();
    if (written_ == work) return;
    const fs::path folder = recoveryFolder();
    std::error_code ignored;
    if (!folder.empty()) fs::create_directories(folder, ignored);
    if (!own_) own_ = findPlace(false);
    if (!own_) {
        throw Error(Fault::Output,
                    fmt::format("{}: cannot be written, so unsaved work is lost if the program "
                                "ends; make it a folder you may write to, or set XDG_STATE_HOME",
                                folder.empty() ? "tavora/recovery" : folder.string()));
    }
    writeWholeFile(own_->file, textOfUnsavedWork(work));
    written_ = std::move(work);
}

void Recovery::clear() {
    std::error_code ignored;
    if (own_) fs::remove(own_->file, ignored);
    own_.reset();
    left_.reset();
    written_.reset();
}

}  // namespace tavora::studio
