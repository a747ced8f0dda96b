#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "studio/edit/file_lock.h"
#include "studio/edit/scene_file.h"
#include "studio/edit/undo_stack.h"
#include "studio/edit/unsaved_work.h"

namespace tavora::studio {

/// Keeps the unsaved work on a scene over a crash, in $XDG_STATE_HOME/tavora/recovery,
/// else ~/.local/state/tavora/recovery. Each session that is open on the scene has a
/// file of its own there, and a lock on it that tells it from what a dead session
/// left. The file outlives this object: it goes when the work is saved or given up.
/// GUI thread.
class Recovery {
  public:
    /// All must outlive it.
    Recovery(const SceneFile& file, SceneSettings& settings, UndoStack& undo)
        : file_(file), settings_(settings), undo_(undo) {}
    Recovery(const Recovery&) = delete;
    Recovery& operator=(const Recovery&) = delete;

    /// Whether a session that did not end well left unsaved work on this scene; what
    /// open windows of any program keep does not count. Removes what dead sessions
    /// left and nobody needs: unfinished files here and beside the scene, locks, and
    /// work that the scene holds already, its session having died after saving it.
    bool isOffered();
    /// Takes that work over as one step. Its file stays until write() replaces it or
    /// clear() removes it. Returns a line for each surface that the scene no longer
    /// has, and when the scene changed. Throws Fault::Scene when it is damaged, and
    /// keeps the damaged file under another name.
    std::vector<std::string> takeOver();
    /// Removes it, and what this session wrote: for unsaved work nobody wants.
    void discard();

    /// Writes the unsaved work; removes the file when all is saved. Cheap when nothing
    /// changed since the last call. Throws Fault::Output.
    void write();
    /// Removes what this session wrote or took over; work of an earlier session that
    /// was not taken over is offered again.
    void clear();

  private:
    struct Place {
        std::filesystem::path file;
        FileLock lock;
    };
    std::optional<Place> findPlace(bool withWork) const;
    UnsavedWork unsavedWork() const;
    bool isSaved(const Place& place) const;
    [[noreturn]] void setAside(const std::string& why);

    const SceneFile& file_;
    SceneSettings& settings_;
    UndoStack& undo_;
    std::optional<Place> own_;   ///< where this session writes
    std::optional<Place> left_;  ///< what is offered
    std::optional<UnsavedWork> written_;
};

}  // namespace tavora::studio
