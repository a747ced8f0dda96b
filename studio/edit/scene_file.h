#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "studio/edit/scene_settings.h"
#include "studio/scene/read_options.h"

namespace tavora::studio {

/// How a file stood on the disk when it was read.
struct FileStamp {
    std::uintmax_t size = 0;
    std::filesystem::file_time_type written;
    std::uint64_t hash = 0;  ///< of its bytes
};

/// The file of a scene: what is saved into it, and whether somebody else changed it.
/// A save that throws leaves the file and the unsaved changes as they were. GUI thread.
class SceneFile {
  public:
    /// To be made before the scene is read, so that no change in between is missed.
    /// Throws Fault::Scene when the file cannot be read.
    explicit SceneFile(const std::filesystem::path& path, const ReadOptions& reading = {});

    const std::filesystem::path& path() const { return path_; }
    /// Of the file when it was read or saved.
    const FileStamp& stamp() const { return stamp_; }

    /// Whether another program changed the file since it was read or saved.
    /// False for one that is gone: save() says so.
    bool changedOnDisk() const;

    /// Writes the settings into the file and marks them as saved. Returns a line for
    /// each surface whose settings the file cannot hold. A file that was changed on
    /// disk is left alone unless `overwrite`; with that the settings go into the
    /// changed file, by the names of its materials. Throws Fault::Output, Fault::Scene.
    std::vector<std::string> save(SceneSettings& settings, bool overwrite = false);
    /// Saves to another file of the same suffix and goes on with that. The file that
    /// was open stays as it is.
    std::vector<std::string> saveAs(SceneSettings& settings, const std::filesystem::path& file);

  private:
    std::vector<std::string> write(SceneSettings& settings, const std::filesystem::path& file,
                                   bool overwrite);

    std::filesystem::path path_;
    ReadOptions reading_;
    FileStamp stamp_;
};

}  // namespace tavora::studio
