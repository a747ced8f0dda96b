#include "studio/panels/panel_frame.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QVBoxLayout>

namespace tavora::studio {

PanelFrame::PanelFrame(QWidget* parent) : QWidget(parent, Qt::Dialog) {
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSizeConstraint(QLayout::SetFixedSize);
}

PanelFrame::~PanelFrame() {
    letGo();
}

void PanelFrame::take(PanelDialog& panel) {
    letGo();
    panel_ = &panel;
    layout()->addWidget(&panel);
    setWindowTitle(panel.windowTitle());
    connect(&panel, &QWidget::windowTitleChanged, this, &QWidget::setWindowTitle);
    panel.show();
    layout()->activate();
    adjustSize();
}

void PanelFrame::letGo() {
    if (panel_.isNull()) return;
    panel_->disconnect(this);
    layout()->removeWidget(panel_);
    panel_->setParent(nullptr);
    panel_ = nullptr;
}

/// The panel decides, as for its Cancel button.
void PanelFrame::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (!panel_.isNull()) panel_->reject();
}

/// Keys reach the window itself while nothing on the panel has the focus.
void PanelFrame::keyPressEvent(QKeyEvent* event) {
    if (!panel_.isNull()) QCoreApplication::sendEvent(panel_, event);
}

}  // namespace tavora::studio
