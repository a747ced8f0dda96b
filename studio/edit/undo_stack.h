#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "studio/edit/scene_settings.h"

namespace tavora::studio {

/// What the user's hands do without letting go, numbered: its changes to one
/// surface are undone together. 0 is never joined with anything.
using Gesture = std::uint64_t;

struct SettingsChange {
    std::size_t surface = 0;
    std::optional<SurfaceShader> before;
    std::optional<SurfaceShader> after;
};

/// What is undone and redone together.
struct Step {
    std::string what;  ///< for menus: "edit of Body"
    std::vector<SettingsChange> changes;
    Gesture gesture = 0;
};

/// What was done to the settings of a scene, and what was undone. The oldest is
/// forgotten first: at most 1,000 steps are kept, and at most 64 MiB unless a
/// single step is larger. GUI thread.
class UndoStack {
  public:
    static constexpr std::size_t kMostSteps = 1000;
    static constexpr std::size_t kMostBytes = std::size_t{64} << 20;

    /// `settings` must outlive it, and is changed by nobody else.
    explicit UndoStack(SceneSettings& settings) : settings_(settings) {}

    /// Does the step; what was undone before cannot be redone. Joins the step
    /// before when the gesture is the same and nothing lies between. What changes
    /// nothing is no step.
    void push(Step step);
    /// The next step stands alone, whatever its gesture.
    void endStep() { open_ = false; }

    bool canUndo() const { return done_ > 0; }
    bool canRedo() const { return done_ < steps_.size(); }
    std::string undoText() const;  ///< empty when there is nothing to undo
    std::string redoText() const;
    void undo();
    void redo();

    /// Whether the last step is what this gesture did.
    bool did(Gesture gesture) const;
    /// Takes the gesture's step back for good; nothing when there is none.
    void abandon(Gesture gesture);

  private:
    struct Entry : Step {
        std::size_t bytes = 0;
    };
    bool joins(const Step& step) const;
    void join(Step step);
    void add(Step step);
    void dropLast();
    void forgetOldest();

    SceneSettings& settings_;
    std::deque<Entry> steps_;
    std::size_t done_ = 0;   ///< steps before this are done, the others undone
    std::size_t bytes_ = 0;  ///< of all steps
    bool open_ = false;      ///< whether the last step may be joined
};

}  // namespace tavora::studio
