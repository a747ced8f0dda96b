#pragma once

#include <QPoint>
#include <functional>
#include <optional>

#include "studio/panels/panels.h"
#include "studio/services/panel_opening.h"
#include "studio/window/gestures.h"
#include "studio/window/session.h"

class QDialog;

namespace tavora::studio {

/// Runs the shader's panel. Its changes go to the document, and so to the picture; undoing and
/// choosing another surface work while it is open. GUI thread.
class PanelSession : public QObject {
    Q_OBJECT
  public:
    /// `window` is the panels' parent. Panels are placed so that they do not cover `side`, a part
    /// of it, if the screen is large enough. All must outlive this object.
    PanelSession(QWidget& window, const QWidget& side, const Gestures& gestures);
    ~PanelSession() override;

    /// Opens the panel for a surface and returns when the user has closed it. If a panel is already
    /// open, it changes to the surface, and the call returns at once. Throws Error, Fault::Module.
    void open(Session& session, std::size_t surface);

    bool isOpen() const { return session_ != nullptr; }
    /// The panel on the screen; null when there is none, also between two of them.
    QWidget* widget() const { return panel_; }
    /// The surface whose panel is open; only while it is.
    std::size_t surface() const { return surface_; }

    /// Closes the panel, calls `change`, which changes the document, and shows the panel again at
    /// the same position. Just calls it when no panel is open.
    void interrupt(std::function<void()> change);
    /// Closes the panel as by OK and then calls `after`; at once when no panel is open.
    void finish(std::function<void()> after);

  signals:
    void opened(std::size_t surface);
    void closed();

  private:
    void showUntilClosed();
    void showOnce(const std::optional<SurfaceShader>& before);
    void closeAndShow(std::size_t next);
    void abandon(Gesture gesture);
    void placePanel(QWidget& frame);
    void panelOpened(QWidget& panel);
    void panelClosed(QWidget& panel);
    void instanceChanged(HostInstance instance);

    QWidget& window_;
    const QWidget& side_;
    const Gestures& gestures_;
    Panels panels_;
    Session* session_ = nullptr;
    QWidget* panel_ = nullptr;  ///< the settings panel, while it is shown
    std::size_t surface_ = 0;
    std::optional<std::size_t> next_;      ///< the surface whose panel to show next
    std::function<void()> pendingChange_;  ///< see interrupt()
    std::function<void()> after_;          ///< see finish()
    std::optional<PanelOpening> opening_;  ///< until the panel is on the screen
    bool confirmed_ = false;
    qsizetype focus_ = -1;            ///< index of the widget that had the focus; -1: none
    std::optional<int> zone_;         ///< that was selected
    std::optional<QPoint> position_;  ///< where the user left the panel
};

}  // namespace tavora::studio
