#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "studio/edit/scene_settings.h"

namespace tavora::studio {

/// The number of a continuous user action, like a drag: its changes to one surface are joined to
/// one step. 0: a change that is never joined.
using Gesture = std::uint64_t;

/// The change of one surface's shader.
struct SettingsChange {
    std::size_t surface = 0;
    std::optional<SurfaceShader> before;
    std::optional<SurfaceShader> after;
};

/// Changes that are undone and redone together.
struct UndoStep {
    std::string what;  ///< for menus: "edit of Body"
    std::vector<SettingsChange> changes;
    Gesture gesture = 0;
};

/// The undo and redo history of a scene's settings. Discards the oldest steps so that there are
/// at most 1,000 steps and at most 64 MiB, unless a single step is larger. GUI thread.
class UndoStack {
  public:
    static constexpr std::size_t kMostSteps = 1000;
    static constexpr std::size_t kMostBytes = std::size_t{64} << 20;

    /// `settings` must outlive it, and must not be changed in any other way.
    explicit UndoStack(SceneSettings& settings) : settings_(settings) {}

    /// Applies the step; steps that were undone can no longer be redone. Joins the step to the
    /// last one if that has the same gesture and nothing happened in between. A step without
    /// changes is ignored.
    void push(UndoStep step);
    /// Prevents the next step from joining the last one.
    void endStep() { canJoin_ = false; }

    bool canUndo() const { return done_ > 0; }
    bool canRedo() const { return done_ < steps_.size(); }
    std::string undoText() const;  ///< empty when there is nothing to undo
    std::string redoText() const;
    void undo();
    void redo();

    /// Whether the last step was made by this gesture, and can be undone.
    bool isLastStepOf(Gesture gesture) const;
    /// Undoes the last step if this gesture made it, without the possibility to redo it.
    void abandon(Gesture gesture);

  private:
    struct Entry : UndoStep {
        std::size_t bytes = 0;
    };
    bool joins(const UndoStep& step) const;
    void join(UndoStep step);
    void add(UndoStep step);
    void dropLast();
    void forgetOldest();

    SceneSettings& settings_;
    std::deque<Entry> steps_;
    std::size_t done_ = 0;   ///< the number of steps that are done; later ones are undone
    std::size_t bytes_ = 0;  ///< of all steps
    bool canJoin_ = false;   ///< whether a step may join the last one
};

}  // namespace tavora::studio
