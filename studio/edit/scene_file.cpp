#include "studio/edit/scene_file.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <optional>
#include <system_error>

#include "studio/files/whole_file.h"
#include "studio/scene/gltf/reader.h"
#include "studio/scene/gltf/settings_writer.h"
#include "studio/util/error.h"
#include "studio/util/hash.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t kMostBytes = std::size_t{1} << 32;

[[noreturn]] void refuse(const fs::path& file, const std::error_code& error) {
    throw Error(Fault::Scene,
                fmt::format("{}: cannot be read: {}; put it back or open another scene",
                            file.string(), error.message()));
}

std::uint64_t contentHash(const fs::path& file) {
    try {
        return hashOf(readWholeFile(file, kMostBytes));
    } catch (const std::system_error& error) {
        refuse(file, error.code());
    }
}

FileStamp quickStamp(const fs::path& file) {
    std::error_code error;
    FileStamp stamp;
    stamp.size = fs::file_size(file, error);
    if (!error) stamp.written = fs::last_write_time(file, error);
    if (error) refuse(file, error);
    return stamp;
}

FileStamp stampOf(const fs::path& file) {
    FileStamp stamp = quickStamp(file);
    stamp.hash = contentHash(file);
    return stamp;
}

/// Reads the file's bytes only when its size is the same but its time differs.
bool isUnchanged(const fs::path& file, const FileStamp& stamp) {
    const FileStamp now = quickStamp(file);
    if (now.size != stamp.size) return false;
    return now.written == stamp.written || contentHash(file) == stamp.hash;
}

/// What to write to a scene file, and warnings about what cannot be written.
struct SavePlan {
    std::map<int, SurfaceShader> shaders;    ///< by material
    std::vector<std::size_t> savedSurfaces;  ///< that the file then has in their current state
    std::vector<std::string> warnings;
};

/// The index of a surface's material in its file, if it has one.
std::optional<int> materialOf(const Surface& surface) {
    if (surface.materialIndex < 0) return std::nullopt;
    return surface.materialIndex;
}

/// The same in a file that another program changed, where the material is found by its name.
std::optional<int> materialNamed(const Scene& changed, const Surface& surface) {
    if (surface.materialIndex < 0) return std::nullopt;
    const auto found =
        std::find_if(changed.surfaces.begin(), changed.surfaces.end(),
                     [&](const Surface& other) { return other.name == surface.name; });
    return found == changed.surfaces.end() ? std::nullopt : materialOf(*found);
}

/// A file cannot store that a surface has no shader if it had one: that is stored as disabled.
SurfaceShader stored(const std::optional<SurfaceShader>& now,
                     const std::optional<SurfaceShader>& saved) {
    if (now) return *now;
    SurfaceShader off = *saved;
    off.enabled = false;
    return off;
}

/// Determines what to write so that the file has the current settings: the unsaved ones if it is
/// as it was read, all of them if another program changed it.
SavePlan planSave(const SceneSettings& settings, const std::optional<Scene>& changed) {
    const Scene& scene = settings.scene();
    SavePlan plan;
    for (std::size_t i = 0; i < scene.surfaces.size(); ++i) {
        const Surface& surface = scene.surfaces[i];
        const std::optional<SurfaceShader>& now = settings.at(i);
        if (changed ? !now : !settings.isUnsaved(i)) continue;
        const std::optional<int> material =
            changed ? materialNamed(*changed, surface) : materialOf(surface);
        if (material) {
            plan.shaders[*material] = stored(now, settings.saved(i));
            plan.savedSurfaces.push_back(i);
        } else {
            plan.warnings.push_back(fmt::format(
                "{}: surface \"{}\" has no material in the {}file, so its settings are not "
                "saved; give it one in your modeller",
                scene.path, surface.name, changed ? "changed " : ""));
        }
    }
    return plan;
}

}  // namespace

SceneFile::SceneFile(const fs::path& path, const ReadOptions& reading)
    : path_(path), reading_(reading), stamp_(stampOf(path)) {}

bool SceneFile::changedOnDisk() const {
    try {
        return !isUnchanged(path_, stamp_);
    } catch (const Error&) {
        return false;
    }
}

std::vector<std::string> SceneFile::save(SceneSettings& settings, bool overwrite) {
    return write(settings, path_, overwrite);
}

std::vector<std::string> SceneFile::saveAs(SceneSettings& settings, const fs::path& file) {
    std::error_code ignored;
    return write(settings, fs::equivalent(file, path_, ignored) ? path_ : file, true);
}

std::vector<std::string> SceneFile::write(SceneSettings& settings, const fs::path& file,
                                          bool overwrite) {
    std::optional<Scene> changed;
    if (!isUnchanged(path_, stamp_)) {
        if (!overwrite) {
            throw Error(Fault::Scene,
                        fmt::format("{}: was changed by another program since it was opened, and "
                                    "is left as it is; save over it or under another name",
                                    path_.string()));
        }
        changed = readGltf(path_, reading_);
    }
    SavePlan plan = planSave(settings, changed);
    if (!plan.shaders.empty() || file != path_) writeGltfSettings(path_, file, plan.shaders);
    path_ = file;
    stamp_ = stampOf(file);
    settings.markSaved(plan.savedSurfaces);
    return std::move(plan.warnings);
}

}  // namespace tavora::studio
