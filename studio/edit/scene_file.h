#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "studio/edit/scene_settings.h"
#include "studio/scene/read_options.h"

namespace tavora::studio {

/// The state of a file when it was read, by which changes are detected.
struct FileStamp {
    std::uintmax_t size = 0;
    std::filesystem::file_time_type written;
    std::uint64_t hash = 0;  ///< of its bytes
};

/// The file of a scene: saves settings, and detects changes by other programs. When saving
/// throws, the file and the unsaved changes are as before. GUI thread.
class SceneFile {
  public:
    /// To be made before the scene is read, so that a change in between is detected. Throws
    /// Error, Fault::Scene, when the file cannot be read.
    explicit SceneFile(const std::filesystem::path& path, const ReadOptions& reading = {});

    const std::filesystem::path& path() const { return path_; }
    /// The file's state when it was read or last saved.
    const FileStamp& stamp() const { return stamp_; }

    /// Whether another program changed the file since it was read or saved. False for a file
    /// that no longer exists, which save() reports.
    bool changedOnDisk() const;

    /// Writes the settings to the file and marks them as saved. Returns a warning for each
    /// surface whose settings the file cannot store. Throws Error: Fault::Scene for a file that
    /// another program changed, unless `overwrite` is set: then the settings are written into
    /// the changed file, by the names of its materials; Fault::Output when writing fails.
    std::vector<std::string> save(SceneSettings& settings, bool overwrite = false);
    /// Saves to another file with the same suffix, which becomes the scene's file. The file
    /// that was open does not change.
    std::vector<std::string> saveAs(SceneSettings& settings, const std::filesystem::path& file);

  private:
    std::vector<std::string> write(SceneSettings& settings, const std::filesystem::path& file,
                                   bool overwrite);

    std::filesystem::path path_;
    ReadOptions reading_;
    FileStamp stamp_;
};

}  // namespace tavora::studio
