#include "studio/edit/recovery.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <system_error>

#include "studio/edit/undo_steps.h"
#include "studio/files/temporary_file.h"
#include "studio/files/whole_file.h"
#include "studio/util/error.h"
#include "studio/util/hash.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

constexpr int kMostSessions = 16;  // on one scene, crashed ones included
constexpr std::size_t kMostBytes = std::size_t{1} << 30;
constexpr std::size_t kMostNameBytes = 100;  // of the scene's name, which is only there for people
constexpr const char* kLockSuffix = ".lock";

/// Empty when the environment names none. Desktop programs agree (XDG base directories) to ignore
/// relative paths.
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

/// Removes the locks of crashed sessions that left no work. A lock with work is removed by the
/// session to which that work is offered.
void removeStaleLocks(const fs::path& folder) {
    try {
        for (const auto& entry : fs::directory_iterator(folder)) {
            fs::path file = entry.path();
            if (file.extension() != kLockSuffix || fs::exists(file.replace_extension())) continue;
            FileLock::take(entry.path());  // its destructor removes the file
        }
    } catch (const fs::filesystem_error&) {
        // A folder that does not exist has no locks.
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

/// Locks one of this scene's recovery files that no running session holds: one that exists, with
/// a crashed session's work, or one that does not.
std::optional<Recovery::RecoveryFile> Recovery::findFile(bool withWork) const {
    const fs::path folder = recoveryFolder();
    const std::string base = baseName(file_.path());
    std::error_code ignored;
    for (int i = 1; i <= kMostSessions && !folder.empty(); ++i) {
        const fs::path file = folder / fmt::format("{}-{}.json", base, i);
        if (fs::exists(file, ignored) != withWork) continue;
        auto lock = FileLock::take(file.string() + kLockSuffix);
        if (lock && fs::exists(file, ignored) == withWork)
            return RecoveryFile{file, std::move(*lock)};
    }
    return std::nullopt;
}

/// A file cannot store that a surface has no shader if it had one: that is stored as disabled.
bool Recovery::isSaved(const RecoveryFile& candidate) const {
    try {
        const UnsavedWork work = readWork(candidate.file);
        return std::all_of(work.surfaces.begin(), work.surfaces.end(), [this](const auto& entry) {
            const auto surface = surfaceNamed(settings_, entry.first);
            if (!surface) return false;
            const std::optional<SurfaceShader>& saved = settings_.saved(*surface);
            return entry.second ? settings_.normalized(entry.second) == saved : !activeBlock(saved);
        });
    } catch (const Error&) {
        return false;  // takeOver() reports the error
    }
}

bool Recovery::isOffered() {
    if (abandoned_) return true;
    std::error_code ignored;
    removeAbandonedFiles(recoveryFolder());
    removeAbandonedFiles(fs::weakly_canonical(file_.path(), ignored).parent_path());
    removeStaleLocks(recoveryFolder());
    do {
        abandoned_ = findFile(true);
    } while (abandoned_ && isSaved(*abandoned_) && fs::remove(abandoned_->file, ignored));
    return abandoned_.has_value();
}

std::vector<std::string> Recovery::takeOver() {
    if (!isOffered()) throw Error(Fault::Scene, "there is no unsaved work to recover");
    UnsavedWork work;
    try {
        work = readWork(abandoned_->file);
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
    const std::optional<RecoveryFile> before =
        std::exchange(own_, std::exchange(abandoned_, std::nullopt));
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
    const fs::path aside = abandoned_->file.string() + ".damaged";
    std::error_code ignored;
    fs::rename(abandoned_->file, aside, ignored);
    abandoned_.reset();
    throw Error(Fault::Scene,
                fmt::format("the unsaved work cannot be recovered: {}; it is kept as {}", why,
                            aside.string()));
}

void Recovery::discard() {
    clear();
    std::error_code ignored;
    if (isOffered()) fs::remove(abandoned_->file, ignored);
    abandoned_.reset();
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
    if (!own_) own_ = findFile(false);
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
    abandoned_.reset();
    written_.reset();
}

}  // namespace tavora::studio
