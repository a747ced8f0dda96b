#include "studio/panels/panel_frame.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QVBoxLayout>
#include <utility>

namespace tavora::studio {

PanelFrame::PanelFrame(QWidget* parent) : QWidget(parent, Qt::Dialog) {
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSizeConstraint(QLayout::SetFixedSize);
}

PanelFrame::~PanelFrame() {
    release();
}

void PanelFrame::take(PanelDialog& panel) {
    release();
    panel_ = &panel;
    layout()->addWidget(&panel);
    setWindowTitle(panel.windowTitle());
    connect(&panel, &QWidget::windowTitleChanged, this, &QWidget::setWindowTitle);
    panel.show();
    layout()->activate();
    adjustSize();
}

void PanelFrame::release() {
    if (panel_.isNull()) return;
    panel_->disconnect(this);
    layout()->removeWidget(panel_);
    panel_->setParent(nullptr);
    panel_ = nullptr;
}

/// Closing the window is like pressing the panel's Cancel button.
void PanelFrame::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (!panel_.isNull()) panel_->reject();
}

/// The window gets keys when no widget of the panel has the focus, and passes them on to the panel.
/// Keys that the panel ignores come back here and are then ignored.
void PanelFrame::keyPressEvent(QKeyEvent* event) {
    if (panel_.isNull() || std::exchange(forwards_, true)) return event->ignore();
    const QPointer<PanelFrame> self(this);
    QCoreApplication::sendEvent(panel_, event);
    if (!self.isNull()) forwards_ = false;
}

}  // namespace tavora::studio
