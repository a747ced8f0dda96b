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

/// The shader's panel while it is open: what it writes goes into the document
/// and so into the picture; undo and a change of surface work under it. GUI thread.
class PanelSession : public QObject {
    Q_OBJECT
  public:
    /// `window` is the panels' parent; they keep clear of `side`, a part of it,
    /// where the screen has room. All must outlive it.
    PanelSession(QWidget& window, const QWidget& side, const Gestures& gestures);
    ~PanelSession() override;

    /// Opens the panel for a surface and returns when the user closed it. With a
    /// panel open already, that one goes on with the surface instead and the call
    /// returns at once. Throws Error, Fault::Module.
    void open(Session& session, std::size_t surface);

    bool isOpen() const { return session_ != nullptr; }
    /// The panel on the screen; null between two of them, too.
    QWidget* widget() const { return panel_; }
    /// The surface whose panel is open; only while it is.
    std::size_t surface() const { return surface_; }

    /// Does `change` to the document while no panel holds the record, and shows
    /// the panel again where it was. Without an open panel just does it.
    void interrupt(std::function<void()> change);
    /// Closes the panel, keeping its changes, and does `after` when it is gone;
    /// at once when none is open.
    void finish(std::function<void()> after);

  signals:
    void opened(std::size_t surface);
    void closed();

  private:
    void showUntilClosed();
    void showOnce(const std::optional<SurfaceShader>& before);
    void closeFor(std::size_t next);
    void abandon(Gesture gesture);
    void placePanel(QWidget& frame);
    void panelOpened(QWidget& panel);
    void panelClosed(QWidget& panel);
    void hear(HostInstance instance);

    QWidget& window_;
    const QWidget& side_;
    const Gestures& gestures_;
    Panels panels_;
    Session* session_ = nullptr;
    QWidget* panel_ = nullptr;  ///< the settings panel, while it is shown
    std::size_t surface_ = 0;
    std::optional<std::size_t> next_;      ///< the surface to go on with
    std::function<void()> between_;        ///< to do before the panel is shown again
    std::function<void()> after_;          ///< to do when all is closed
    std::optional<PanelOpening> opening_;  ///< until the panel is on the screen
    bool confirmed_ = false;
    qsizetype focus_ = -1;            ///< which widget of the panel had the keyboard
    int zone_ = -1;                   ///< which zone was selected
    std::optional<QPoint> position_;  ///< where the user left the panel
};

}  // namespace tavora::studio
