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

/// Preserves the unsaved work on a scene over a crash, in $XDG_STATE_HOME/tavora/recovery, or
/// else in ~/.local/state/tavora/recovery. Each session that edits the scene has its own file
/// there, with a lock that distinguishes it from the file of a crashed session. The file
/// outlives this object: it is removed when the work is saved or discarded. GUI thread.
class Recovery {
  public:
    /// All must outlive it.
    Recovery(const SceneFile& file, SceneSettings& settings, UndoStack& undo)
        : file_(file), settings_(settings), undo_(undo) {}
    Recovery(const Recovery&) = delete;
    Recovery& operator=(const Recovery&) = delete;

    /// Whether a crashed session left unsaved work on this scene; files of running sessions do
    /// not count. Also removes useless files of crashed sessions: temporary files here and in
    /// the scene's folder, locks, and work that the scene already has because the session
    /// crashed after saving.
    bool isOffered();
    /// Takes that work over as one undo step. Its file is now this session's: it stays until
    /// write() replaces it or clear() removes it. Returns a warning for each surface that the
    /// scene no longer has, and one if the scene changed. Throws Error, Fault::Scene, when the
    /// file is damaged, which is then kept under another name.
    std::vector<std::string> takeOver();
    /// Removes that work, and what this session wrote.
    void discard();

    /// Writes the unsaved work, or removes the file when all is saved. Does nothing when nothing
    /// changed since the last call. Throws Error, Fault::Output.
    void write();
    /// Removes the file that this session wrote or took over. Work of a crashed session that
    /// was not taken over is offered again.
    void clear();

  private:
    struct RecoveryFile {
        std::filesystem::path file;
        FileLock lock;
    };
    std::optional<RecoveryFile> findFile(bool withWork) const;
    UnsavedWork unsavedWork() const;
    bool isSaved(const RecoveryFile& candidate) const;
    [[noreturn]] void setAside(const std::string& why);

    const SceneFile& file_;
    SceneSettings& settings_;
    UndoStack& undo_;
    std::optional<RecoveryFile> own_;        ///< which this session writes
    std::optional<RecoveryFile> abandoned_;  ///< by a crashed session: the offered work
    std::optional<UnsavedWork> written_;     ///< the contents of own_
};

}  // namespace tavora::studio
