#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "studio/edit/recovery.h"
#include "studio/edit/scene_file.h"
#include "studio/edit/scene_settings.h"
#include "studio/edit/undo_stack.h"
#include "studio/setup/film_scene.h"

namespace tavora::studio {

/// A scene that is being edited. Who edits talks to the part that it needs. GUI
/// thread. Knows no window.
struct Document {
    /// Throws what SceneFile, FilmScene and SceneSettings throw.
    Document(const std::filesystem::path& scene, const ShadingRequest& shading, Report& report,
             const ReadOptions& reading = {});

    SceneFile file;
    FilmScene film;  ///< at rest until it plays, which is no change of the document
    SceneSettings settings;
    UndoStack undo{settings};
    Recovery recovery{file, settings, undo};

    /// SceneFile::save(), after which the recovery file is gone and the next change is a
    /// step of its own.
    std::vector<std::string> save(bool overwrite = false);
    std::vector<std::string> saveAs(const std::filesystem::path& to);
};

}  // namespace tavora::studio
