#include "studio/window/panel_session.h"

#include <QDialog>
#include <QScopeGuard>
#include <QScreen>
#include <utility>

#include "studio/edit/undo_steps.h"
#include "studio/services/instance_update.h"
#include "studio/window/panel_place.h"
#include "studio/window/panel_services.h"

namespace tavora::studio {
namespace {

/// Of a window, as the desktop frames it; taken for those of one not yet shown.
QMargins borders(const QWidget& window) {
    const QRect inner = window.geometry();
    const QRect outer = window.frameGeometry();
    return {inner.left() - outer.left(), inner.top() - outer.top(), outer.right() - inner.right(),
            outer.bottom() - inner.bottom()};
}

/// The panel's widgets in an order that is the same whenever it is opened.
QList<QWidget*> widgetsOf(const QWidget& panel) {
    return panel.findChildren<QWidget*>();
}

}  // namespace

PanelSession::PanelSession(QWidget& window, const QWidget& side, const Gestures& gestures)
    : window_(window),
      side_(side),
      gestures_(gestures),
      panels_(&window, {[this](QWidget& panel) { placePanel(*panel.window()); },
                        [this](QWidget& panel) { panelOpened(panel); },
                        [this](QWidget& panel) { panelClosed(panel); },
                        {}}) {
    setInstanceListener([this](const char*, HostInstance instance) { hear(instance); });
    connect(&gestures_, &Gestures::abandoned, this, &PanelSession::abandon);
}

PanelSession::~PanelSession() {
    setInstanceListener({});
}

void PanelSession::open(Session& session, std::size_t surface) {
    if (isOpen()) {
        if (surface != surface_) closeFor(surface);
        return;
    }
    session_ = &session;
    next_ = surface;
    const auto end = [this] {
        panels_.keepWindow(false);
        session_ = nullptr;
        emit closed();
    };
    try {
        showUntilClosed();
    } catch (...) {
        end();
        throw;
    }
    end();
    if (after_) std::exchange(after_, {})();
}

void PanelSession::interrupt(std::function<void()> change) {
    if (!isOpen()) return change();
    between_ = std::move(change);
    closeFor(surface_);
}

/// Keeps the window for the panel that follows, and with the same surface what
/// the user was at.
void PanelSession::closeFor(std::size_t next) {
    next_ = next;
    if (panel_ != nullptr) {
        focus_ = widgetsOf(*panel_).indexOf(panel_->focusWidget());
        zone_ = next == surface_ ? selectedZone(*panel_) : -1;
    }
    panels_.keepWindow(true);
    panels_.close(true);
}

void PanelSession::finish(std::function<void()> after) {
    if (!isOpen()) return after();
    after_ = std::move(after);
    next_.reset();
    panels_.close(true);
}

/// The control went back by itself, but not always to the last bit.
void PanelSession::abandon(Gesture gesture) {
    if (!isOpen() || !session_->document().undo.isLastStepOf(gesture)) return;
    interrupt([this, gesture] { session_->document().undo.abandon(gesture); });
}

void PanelSession::showUntilClosed() {
    const SceneSettings& settings = session_->document().settings;
    std::optional<SurfaceShader> before;
    for (bool resumed = false; next_; resumed = true) {
        const std::size_t surface = *std::exchange(next_, std::nullopt);
        if (!resumed || surface != surface_) before = settings.at(surface);
        surface_ = surface;
        if (between_) std::exchange(between_, {})();
        if (resumed && !settings.at(surface)) return;
        showOnce(before);
    }
}

void PanelSession::showOnce(const std::optional<SurfaceShader>& before) {
    SceneSettings& settings = session_->document().settings;
    UndoStack& undo = session_->document().undo;
    undo.endStep();
    if (!settings.at(surface_)) undo.push(enableStep(settings, surface_, true));
    emit opened(surface_);
    confirmed_ = false;
    const std::shared_ptr<const LightSet> lights = session_->lights();
    const PanelBinding binding(*lights);
    Shader& record = settings.record(surface_);
    opening_.emplace();
    const auto opened = qScopeGuard([this] { opening_.reset(); });
    openOptions(settings.module(), record);
    if (confirmed_) {
        undo.push(recordStep(settings, surface_, 0));
    } else if (settings.at(surface_) != before) {
        // Back to how the user met the panel, also when it was shown anew in
        // between. A step like any other: it can be undone.
        undo.push(settingsStep(settings, {{surface_, before}}, "Cancel"));
    }
    undo.endStep();
}

/// Panels over the settings panel look after themselves.
void PanelSession::panelOpened(QWidget& panel) {
    if (panel_ != nullptr) return;
    opening_.reset();
    panel_ = &panel;
    panels_.keepWindow(false);
    const std::string& name = session_->scene().surfaces[surface_].name;
    panel.setWindowTitle(tr("%1 – %2").arg(QString::fromStdString(name), panel.windowTitle()));
    if (zone_ >= 0) selectZone(panel, std::exchange(zone_, -1));
    if (QWidget* widget = widgetsOf(panel).value(std::exchange(focus_, -1))) widget->setFocus();
}

void PanelSession::placePanel(QWidget& frame) {
    if (panel_ != nullptr) return;
    const QRect screen = window_.screen()->availableGeometry();
    const QSize size = frame.size().grownBy(borders(window_));
    const QRect side(side_.mapToGlobal(QPoint()), side_.size());
    frame.move(position_ ? within(screen, *position_, size)
                         : panelPlace(screen, window_.frameGeometry(), side, size));
}

void PanelSession::panelClosed(QWidget& panel) {
    if (&panel != panel_) return;
    panel_ = nullptr;
    position_ = panel.window()->pos();
    const auto* dialog = qobject_cast<QDialog*>(&panel);
    confirmed_ = dialog != nullptr && dialog->result() == QDialog::Accepted;
}

void PanelSession::hear(HostInstance instance) {
    if (!isOpen()) return;
    Document& document = session_->document();
    if (const auto surface = document.settings.surfaceOf(instance)) {
        document.undo.push(recordStep(document.settings, *surface, gestures_.current()));
    }
}

}  // namespace tavora::studio
