#include "studio/edit/recovery_files.h"

#include <cstdlib>
#include <fmt/format.h>
#include <system_error>

#include "studio/edit/file_stamp.h"
#include "studio/files/whole_file.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

constexpr int kMostSessions = 16;  // on one scene, the dead counted in
constexpr std::size_t kMostBytes = std::size_t{1} << 30;
constexpr std::size_t kMostNameBytes = 100;  // of the scene's name, for people

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

fs::path basePath(const fs::path& scene) {
    const fs::path folder = recoveryFolder();
    if (folder.empty()) return {};
    std::error_code ignored;
    fs::path whole = fs::weakly_canonical(scene, ignored);
    if (whole.empty()) whole = fs::absolute(scene);
    const std::string name = scene.filename().string().substr(0, kMostNameBytes);
    return folder / fmt::format("{}-{:016x}", name, hashOf(whole.string()));
}

}  // namespace

RecoveryFiles::RecoveryFiles(const fs::path& scene) : base_(basePath(scene)) {
    if (!base_.empty()) findPlaces();
}

void RecoveryFiles::findPlaces() {
    std::error_code ignored;
    fs::create_directories(base_.parent_path(), ignored);
    for (int i = 1; i <= kMostSessions && !(own_ && left_); ++i) {
        const fs::path file = fmt::format("{}-{}.json", base_.string(), i);
        auto lock = FileLock::take(file.string() + ".lock");
        if (!lock) continue;
        std::optional<Place>& place = fs::exists(file, ignored) ? left_ : own_;
        if (!place) place = Place{file, std::move(*lock)};
    }
}

std::string RecoveryFiles::readLeft() const {
    try {
        return readWholeFile(left_->file, kMostBytes);
    } catch (const std::system_error& error) {
        throw Error(Fault::Scene, fmt::format("{}: cannot be read: {}", left_->file.string(),
                                              error.code().message()));
    }
}

void RecoveryFiles::removeLeft() {
    if (!left_) return;
    std::error_code ignored;
    fs::remove(left_->file, ignored);
    left_.reset();
}

fs::path RecoveryFiles::setLeftAside() {
    fs::path aside = left_->file.string() + ".damaged";
    std::error_code ignored;
    fs::rename(left_->file, aside, ignored);
    left_.reset();
    return aside;
}

void RecoveryFiles::write(std::string_view text) {
    if (!own_ && !base_.empty()) findPlaces();
    if (!own_) {
        throw Error(Fault::Output,
                    fmt::format("{}: cannot be written, so unsaved work is lost if the program "
                                "ends; make it a folder "
                                "you may write to, or set XDG_STATE_HOME",
                                base_.empty() ? "tavora/recovery" : base_.parent_path().string()));
    }
    writeWholeFile(own_->file, text);
}

void RecoveryFiles::remove() {
    std::error_code ignored;
    if (own_) fs::remove(own_->file, ignored);
}

}  // namespace tavora::studio
