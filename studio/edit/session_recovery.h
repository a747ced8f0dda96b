#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "studio/edit/recovery_files.h"
#include "studio/edit/recovery_text.h"

namespace tavora::studio {

/// The unsaved work of one session, and of one before it that ended badly. One thread.
class SessionRecovery {
  public:
    explicit SessionRecovery(const std::filesystem::path& scene) : files_(scene) {}

    /// Work that nobody took or discarded yet.
    bool hasLeft() const { return files_.hasLeft() && !taken_; }
    /// Its file stays until this session has written its own, or removes it.
    /// Throws Error when it is damaged; then it is kept under another name.
    UnsavedWork takeLeft();

    /// Writes this session's own unless that says so already. Throws Error, Fault::Output.
    void write(const UnsavedWork& work);
    /// Removes this session's own, and what it took.
    void removeTaken();
    /// Removes everything.
    void discard();

  private:
    RecoveryFiles files_;
    bool taken_ = false;
    std::optional<UnsavedWork> written_;
};

}  // namespace tavora::studio
