#pragma once

#include <functional>
#include <memory>
#include <optional>

class QWidget;

namespace tavora::studio {

/// Functions of the program that are called for panels. GUI thread.
struct PanelHooks {
    /// Called before the window of a panel, its window(), is shown at the position that the module
    /// requested; may move it. Moving a window after it was shown would be off by its frame.
    std::function<void(QWidget& panel)> opening;
    /// Called when a panel is shown.
    std::function<void(QWidget& panel)> opened;
    /// Called when it was closed; its controls exist until the module destroys the panel.
    std::function<void(QWidget& panel)> closed;
    /// When set, opening a panel shows no window: the panel is laid out at its full size, passed to
    /// this function, and then closed as by Cancel.
    std::function<void(QWidget& panel)> insteadOfShowing;
};

/// Offers modules "LWPanelServices", "RasterServices" and "Color Picker" on
/// Qt Widgets as long as it exists. One at a time, after the QApplication; GUI
/// thread. A panel runs its own event loop inside the module's call. While the outermost panel is
/// open, the window can be used; a panel or colour dialog over it blocks both.
class Panels {
  public:
    /// `window` is the parent of panels and dialogs. It may be null, else it must outlive this
    /// object.
    explicit Panels(QWidget* window, PanelHooks hooks = {});
    ~Panels();
    Panels(const Panels&) = delete;
    Panels& operator=(const Panels&) = delete;

    /// The innermost modal panel, or null.
    QWidget* openPanel() const;
    /// Closes every open panel, from the innermost, as if its OK (or Cancel)
    /// were pressed. The event loops end after the call returns.
    void close(bool confirm);
    /// While set, the window of the outermost panel stays open when the panel closes, and shows the
    /// next panel. Unsetting it closes a window that has no panel.
    void keepWindow(bool keep);

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

/// Brings a page of the panel's tab control to the front, as a click on its tab
/// does. False when the panel has no such tab.
bool selectTab(QWidget& panel, int tab);

/// The index of the selected zone of a panel's gradient, from the dark end, if there is one.
std::optional<int> selectedZone(const QWidget& panel);
/// Selects a zone like a click on its marker; the last one when there are fewer.
void selectZone(QWidget& panel, int zone);

}  // namespace tavora::studio
