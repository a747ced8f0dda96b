#pragma once

namespace tavora::studio {

/// While it lives, a panel is being opened on this thread. Modules look then
/// whether their settings file opens, and write a new one where it does not: a
/// file that is there but cannot be read opens for them, without content, and so
/// stays as it is.
class PanelOpening {
  public:
    PanelOpening() { ++opening; }
    ~PanelOpening() { --opening; }
    PanelOpening(const PanelOpening&) = delete;
    PanelOpening& operator=(const PanelOpening&) = delete;

    /// Whether one lives on this thread.
    static bool any() { return opening > 0; }

  private:
    inline static thread_local int opening = 0;
};

}  // namespace tavora::studio
