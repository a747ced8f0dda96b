#include "studio/panels/area_control.h"

#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

namespace tavora::studio {
namespace {

constexpr int kSmall = 48;  // areas up to this width are buttons, not strips
constexpr int kPage = 20;   // pixels

}  // namespace

AreaWidget::AreaWidget(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
}

void AreaWidget::press(QPoint mouse) {
    mouse_ = mouse;
    update();
    emit pressed();
}

void AreaWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    keys_ = false;
    const QPoint mouse = event->position().toPoint();
    if (reach_ > 0) caret_ = std::clamp(mouse.x(), 0, reach_);
    press(mouse);
}

void AreaWidget::moveCaret(int distance) {
    if (caret_ < 0) caret_ = reach_ / 2;
    caret_ = std::clamp(caret_ + distance, 0, reach_);
    update();
}

void AreaWidget::keyPressEvent(QKeyEvent* event) {
    keys_ = true;
    const int pace = event->modifiers().testFlag(Qt::ControlModifier) ? kPage : 1;
    switch (event->key()) {
        case Qt::Key_Space:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            moveCaret(0);
            return press({reach_ > 0 ? caret_ : width() / 2, height() / 2});
        case Qt::Key_Left:
            return moveCaret(-pace);
        case Qt::Key_Right:
            return moveCaret(pace);
        case Qt::Key_PageDown:
            return moveCaret(-kPage);
        case Qt::Key_PageUp:
            return moveCaret(kPage);
        case Qt::Key_Home:
            return moveCaret(-reach_);
        case Qt::Key_End:
            return moveCaret(reach_);
        default:
            event->ignore();
    }
}

void AreaWidget::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    const auto reason = event->reason();
    keys_ = keys_ || reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
}

void AreaWidget::paintEvent(QPaintEvent* /*event*/) {
    if (!hasFocus()) return;
    QPainter painter(this);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
    if (reach_ <= 0 || !keys_) return;
    const int caret = caret_ < 0 ? reach_ / 2 : caret_;
    const QRectF line(caret - 0.5, 1, 2, height() - 2);
    painter.fillRect(line.adjusted(-1, 0, 1, 0), palette().color(QPalette::Base));
    painter.fillRect(line, palette().color(QPalette::Highlight));
}

void AreaControl::place(const LayoutItem& item) {
    PanelControl::place(item);
    area_->raise();  // over the control that it covers
}

AreaControl::AreaControl(const ControlSeed& seed)
    : PanelControl(seed), area_(new AreaWidget(seed.canvas)) {
    QSize size(0, 0);
    if (seed.description.type == HOST_VALUE_AREA) {
        const auto& asked = seed.description.of.area;
        size = QSize(asked.width, asked.height).expandedTo(QSize(0, 0));
    }
    if (size.width() > kSmall) area_->setReach(size.width());
    setField(area_, LayoutKind::Area, size);
    connect(area_, &AreaWidget::pressed, this, [this] { fire(); });
}

}  // namespace tavora::studio
