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

/// A scene that is being edited. Its parts are used directly. GUI thread; does not depend on a
/// window.
struct Document {
    /// Throws what SceneFile, FilmScene and SceneSettings throw.
    Document(const std::filesystem::path& scene, const ShadingRequest& shading, Report& report,
             const ReadOptions& reading = {});

    SceneFile file;
    FilmScene film;  ///< playing it does not change the document
    SceneSettings settings;
    UndoStack undo{settings};
    Recovery recovery{file, settings, undo};

    /// SceneFile::save(), then removes the recovery file and ends the current undo step, so
    /// that the next change does not join it. The same for saveAs().
    std::vector<std::string> save(bool overwrite = false);
    std::vector<std::string> saveAs(const std::filesystem::path& to);
};

}  // namespace tavora::studio
