#pragma once

namespace tavora::studio {

/// Exists while a panel is opened on its thread. A module then tries to open its settings file
/// and writes a new one if that fails. So that a file that exists but cannot be read is not
/// replaced, it opens successfully during this time, without content.
class PanelOpening {
  public:
    PanelOpening() { ++opening; }
    ~PanelOpening() { --opening; }
    PanelOpening(const PanelOpening&) = delete;
    PanelOpening& operator=(const PanelOpening&) = delete;

    /// Whether such an object exists on this thread.
    static bool any() { return opening > 0; }

  private:
    inline static thread_local int opening = 0;
};

}  // namespace tavora::studio
