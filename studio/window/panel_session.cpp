#include "studio/window/panel_session.h"

#include <QDialog>
#include <QScopeGuard>
#include <QScreen>
#include <utility>

#include "studio/edit/undo_steps.h"
#include "studio/services/instance_update.h"
#include "studio/window/panel_position.h"
#include "studio/window/panel_services.h"

namespace tavora::studio {
namespace {

/// The desktop's frame of a shown window, which also serves as an estimate for a window that is not
/// shown yet.
QMargins borders(const QWidget& window) {
    const QRect inner = window.geometry();
    const QRect outer = window.frameGeometry();
    return {inner.left() - outer.left(), inner.top() - outer.top(), outer.right() - inner.right(),
            outer.bottom() - inner.bottom()};
}

/// The panel's widgets, in an order that is the same each time it is opened.
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
    setInstanceListener([this](const char*, HostInstance instance) { instanceChanged(instance); });
    connect(&gestures_, &Gestures::abandoned, this, &PanelSession::abandon);
}

PanelSession::~PanelSession() {
    setInstanceListener({});
}

void PanelSession::open(Session& session, std::size_t surface) {
    if (isOpen()) {
        if (surface != surface_) closeAndShow(surface);
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
    pendingChange_ = std::move(change);
    closeAndShow(surface_);
}

/// Closes the panel to show that of surface `next`, in the same window. For the same surface, the
/// focus and the selected zone are restored.
void PanelSession::closeAndShow(std::size_t next) {
    next_ = next;
    if (panel_ != nullptr) {
        focus_ = widgetsOf(*panel_).indexOf(panel_->focusWidget());
        zone_ = next == surface_ ? selectedZone(*panel_) : std::nullopt;
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

/// The control has reverted its change, but not always exactly; so the step is undone.
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
        if (pendingChange_) std::exchange(pendingChange_, {})();
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
        // Reverts to the state before the user opened the panel, even if it was shown again in
        // between. This is a step that can be undone.
        undo.push(settingsStep(settings, {{surface_, before}}, "Cancel"));
    }
    undo.endStep();
}

/// Panels over the settings panel need no handling.
void PanelSession::panelOpened(QWidget& panel) {
    if (panel_ != nullptr) return;
    opening_.reset();
    panel_ = &panel;
    panels_.keepWindow(false);
    const std::string& name = session_->scene().surfaces[surface_].name;
    panel.setWindowTitle(tr("%1 – %2").arg(QString::fromStdString(name), panel.windowTitle()));
    if (const auto zone = std::exchange(zone_, std::nullopt)) selectZone(panel, *zone);
    if (QWidget* widget = widgetsOf(panel).value(std::exchange(focus_, -1))) widget->setFocus();
}

void PanelSession::placePanel(QWidget& frame) {
    if (panel_ != nullptr) return;
    const QRect screen = window_.screen()->availableGeometry();
    const QSize size = frame.size().grownBy(borders(window_));
    const QRect side(side_.mapToGlobal(QPoint()), side_.size());
    frame.move(position_ ? within(screen, *position_, size)
                         : panelPosition(screen, window_.frameGeometry(), side, size));
}

void PanelSession::panelClosed(QWidget& panel) {
    if (&panel != panel_) return;
    panel_ = nullptr;
    position_ = panel.window()->pos();
    const auto* dialog = qobject_cast<QDialog*>(&panel);
    confirmed_ = dialog != nullptr && dialog->result() == QDialog::Accepted;
}

void PanelSession::instanceChanged(HostInstance instance) {
    if (!isOpen()) return;
    Document& document = session_->document();
    if (const auto surface = document.settings.surfaceOf(instance)) {
        document.undo.push(recordStep(document.settings, *surface, gestures_.current()));
    }
}

}  // namespace tavora::studio
