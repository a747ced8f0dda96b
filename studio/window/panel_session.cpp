#include "studio/window/panel_session.h"

#include <QDialog>
#include <QScopeGuard>
#include <QScreen>
#include <QWindow>
#include <utility>

#include "studio/services/instance_update.h"

namespace tavora::studio {
namespace {

constexpr int kGap = 8;  // pixels

/// Beside the window, or as far beside it as the screen has room.
QPoint besideWindow(const QWidget& window, const QWidget& panel) {
    const QRect screen = window.screen()->availableGeometry();
    const QRect frame = window.frameGeometry();
    const QSize size = panel.frameGeometry().size();
    const int lastX = screen.right() - size.width();
    const int lastY = screen.bottom() - size.height();
    const int y = frame.top() + (frame.height() - size.height()) / 2;
    return {std::max(screen.left(), std::min(frame.right() + kGap, lastX)),
            std::max(screen.top(), std::min(y, lastY))};
}

}  // namespace

PanelSession::PanelSession(QWidget& window, const Gestures& gestures)
    : window_(window),
      gestures_(gestures),
      panels_(&window, {[this](QWidget& panel) { panelOpened(panel); },
                        [this](QWidget& panel) { panelClosed(panel); },
                        {}}) {
    setInstanceListener([this](const char*, HostInstance instance) { hear(instance); });
}

PanelSession::~PanelSession() {
    setInstanceListener({});
}

void PanelSession::open(Session& session, std::size_t surface) {
    if (isOpen()) {
        if (surface == surface_) return;
        next_ = surface;
        panels_.close(true);
        return;
    }
    session_ = &session;
    next_ = surface;
    try {
        showUntilClosed();
    } catch (...) {
        session_ = nullptr;
        emit closed();
        throw;
    }
    session_ = nullptr;
    emit closed();
    if (after_) std::exchange(after_, {})();
}

void PanelSession::interrupt(std::function<void()> change) {
    if (!isOpen()) return change();
    between_ = std::move(change);
    next_ = surface_;
    panels_.close(true);
}

void PanelSession::finish(std::function<void()> after) {
    if (!isOpen()) return after();
    after_ = std::move(after);
    next_.reset();
    panels_.close(true);
}

void PanelSession::showUntilClosed() {
    SurfaceSettings before;
    for (bool resumed = false; next_; resumed = true) {
        const std::size_t surface = *std::exchange(next_, std::nullopt);
        if (!resumed || surface != surface_) before = session_->document().settings(surface);
        surface_ = surface;
        if (between_) std::exchange(between_, {})();
        if (resumed && !session_->document().settings(surface).block) return;
        showOnce(before);
    }
}

void PanelSession::showOnce(const SurfaceSettings& before) {
    Document& document = session_->document();
    document.endStep();
    if (!document.settings(surface_).block) document.setEnabled(surface_, true);
    emit opened(surface_);
    confirmed_ = false;
    Shader& record = document.record(surface_);
    opening_.emplace();
    const auto opened = qScopeGuard([this] { opening_.reset(); });
    openOptions(document.moduleCopy(), record);
    if (confirmed_) {
        document.takeRecord(surface_, 0);
    } else if (document.settings(surface_) != before) {
        // Back to how the user met the panel, also when it was shown anew in
        // between. A step like any other: it can be undone.
        document.setSettings({{surface_, before}}, "Cancel");
    }
    document.endStep();
}

/// Panels over the settings panel look after themselves.
void PanelSession::panelOpened(QWidget& panel) {
    if (panel_ != nullptr) return;
    opening_.reset();
    panel_ = &panel;
    const std::string& name = session_->document().scene().surfaces[surface_].name;
    panel.setWindowTitle(tr("%1 – %2").arg(QString::fromStdString(name), panel.windowTitle()));
    panel.move(position_.value_or(besideWindow(window_, panel)));
}

void PanelSession::panelClosed(QWidget& panel) {
    if (&panel != panel_) return;
    panel_ = nullptr;
    position_ = panel.pos();
    const auto* dialog = qobject_cast<QDialog*>(&panel);
    confirmed_ = dialog != nullptr && dialog->result() == QDialog::Accepted;
}

void PanelSession::hear(HostInstance instance) {
    if (!isOpen()) return;
    Document& document = session_->document();
    if (const auto surface = document.surfaceOf(instance)) {
        document.takeRecord(*surface, gestures_.current());
    }
}

}  // namespace tavora::studio
