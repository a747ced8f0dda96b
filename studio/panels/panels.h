#pragma once

#include <functional>
#include <memory>

class QWidget;

namespace tavora::studio {

/// How the program around the panels takes part. GUI thread.
struct PanelHooks {
    /// A window is about to be shown around a panel (its window()), placed where
    /// the module asked; may move it. Windows that are moved once they are
    /// shown end up off by their frame.
    std::function<void(QWidget& panel)> opening;
    /// A modal panel is shown.
    std::function<void(QWidget& panel)> opened;
    /// It is closed; its controls live until the module destroys the panel.
    std::function<void(QWidget& panel)> closed;
    /// When set, opening a panel shows no window: it is laid out and painted at
    /// its full size, handed over, and then closed as by Cancel.
    std::function<void(QWidget& panel)> insteadOfShowing;
};

/// Offers modules "LWPanelServices", "RasterServices" and "Color Picker" on
/// Qt Widgets as long as it lives. One at a time, after the QApplication; GUI
/// thread. Modal panels run an event loop of their own inside the module's call.
/// While the outermost panel is open, the window can be used; a panel or colour
/// dialog over it blocks both.
class Panels {
  public:
    /// `window` is the parent of panels and dialogs; may be null; must outlive it.
    explicit Panels(QWidget* window, PanelHooks hooks = {});
    ~Panels();
    Panels(const Panels&) = delete;
    Panels& operator=(const Panels&) = delete;

    /// The innermost modal panel, or null.
    QWidget* openPanel() const;
    /// Closes every open panel, from the innermost, as if its OK (or Cancel)
    /// were pressed. The event loops end after the call returns.
    void close(bool confirm);
    /// While set, the window of the outermost panel stays when that closes and
    /// shows the next one instead. Unset, a window that still waits goes away.
    void keepWindow(bool keep);

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

/// Brings a page of the panel's tab control to the front, as a click on its tab
/// does. False when the panel has no such tab.
bool selectTab(QWidget& panel, int tab);

/// The selected zone of a panel's gradient, counted from the dark end; -1: none.
int selectedZone(const QWidget& panel);
/// Selects a zone as a click on its marker does, or where there are fewer the last.
void selectZone(QWidget& panel, int zone);

}  // namespace tavora::studio
