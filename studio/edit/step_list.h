#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "studio/scene/surface_shader.h"

namespace tavora::studio {

/// Steps of the user: changes with the same gesture on the same surface are
/// undone together. 0 is never joined with anything.
using Gesture = std::uint64_t;

struct SettingsChange {
    std::size_t surface = 0;
    std::optional<SurfaceShader> before;
    std::optional<SurfaceShader> after;
};

/// What is undone and done again together.
struct Step {
    std::string what;  ///< for menus
    std::vector<SettingsChange> changes;
    Gesture gesture = 0;
};

/// What was done and what was undone, the oldest forgotten first: at most 1,000
/// steps, and at most 64 MiB unless a single step is larger. Plain data; one thread.
class StepList {
  public:
    static constexpr std::size_t kMostSteps = 1000;
    static constexpr std::size_t kMostBytes = std::size_t{64} << 20;

    /// Adds what was just done; what was undone before cannot be done again.
    /// Joined with the step before when the gesture is the same and nothing lies
    /// between. What changes nothing is no step.
    void add(Step step);
    /// The next step stands alone, whatever its gesture.
    void end() { open_ = false; }

    /// Whether the last step is this gesture's and nothing was undone since.
    bool isLast(Gesture gesture) const;
    /// Removes the last step, which cannot be done again. Only when there is one.
    Step drop();

    bool canUndo() const { return done_ > 0; }
    bool canRedo() const { return done_ < steps_.size(); }
    const std::string& undoText() const { return steps_[done_ - 1].what; }
    const std::string& redoText() const { return steps_[done_].what; }
    /// The step to take back, or to do again: valid until the next call. Only
    /// when there is one.
    const Step& undo();
    const Step& redo();

  private:
    struct Entry : Step {
        std::size_t bytes = 0;
    };
    bool joins(const Step& step) const;
    void join(Step step);
    void forgetOldest();

    std::deque<Entry> steps_;
    std::size_t done_ = 0;   ///< steps before this are done, the others undone
    std::size_t bytes_ = 0;  ///< of all steps
    bool open_ = false;      ///< whether the last step may be joined
};

}  // namespace tavora::studio
