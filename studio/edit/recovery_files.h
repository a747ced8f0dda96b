#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "studio/edit/file_lock.h"

namespace tavora::studio {

/// Where unsaved work on one scene is kept: $XDG_STATE_HOME/tavora/recovery,
/// else ~/.local/state/tavora/recovery. Each session that is open on the scene
/// has a file of its own, and a lock on it that tells it from what a session
/// that ended badly left. One thread.
class RecoveryFiles {
  public:
    /// Takes a file for this session, and one that a dead session left, if any.
    /// A folder that cannot be made or written is told by write().
    explicit RecoveryFiles(const std::filesystem::path& scene);

    /// What a dead session left; only one at a time is offered.
    bool hasLeft() const { return left_.has_value(); }
    const std::filesystem::path& leftFile() const { return left_->file; }
    /// Throws Error when it cannot be read.
    std::string readLeft() const;
    void removeLeft();
    /// Keeps it under another name, which is returned, and offers it no more.
    std::filesystem::path setLeftAside();

    /// This session's own. Throws Error, Fault::Output.
    void write(std::string_view text);
    void remove();

  private:
    struct Place {
        std::filesystem::path file;
        FileLock lock;
    };
    void findPlaces();

    std::filesystem::path base_;  ///< without number and suffix; empty: no folder is known
    std::optional<Place> own_;
    std::optional<Place> left_;
};

}  // namespace tavora::studio
