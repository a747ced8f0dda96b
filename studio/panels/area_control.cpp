#include "studio/panels/area_control.h"

#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

namespace tavora::studio {
namespace {

constexpr int kMaxButtonWidth = 48;  // pixels; wider areas are strips with a caret
constexpr int kPage = 20;            // pixels

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
    usesKeys_ = false;
    const QPoint mouse = event->position().toPoint();
    if (caretRange_ > 0) caretX_ = std::clamp(mouse.x(), 0, caretRange_);
    press(mouse);
}

void AreaWidget::moveCaret(int distance) {
    caretX_ = std::clamp(caretX() + distance, 0, caretRange_);
    update();
}

void AreaWidget::keyPressEvent(QKeyEvent* event) {
    usesKeys_ = true;
    const int pace = event->modifiers().testFlag(Qt::ControlModifier) ? kPage : 1;
    switch (event->key()) {
        case Qt::Key_Space:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            moveCaret(0);
            return press({caretRange_ > 0 ? caretX() : width() / 2, height() / 2});
        case Qt::Key_Left:
            return moveCaret(-pace);
        case Qt::Key_Right:
            return moveCaret(pace);
        case Qt::Key_PageDown:
            return moveCaret(-kPage);
        case Qt::Key_PageUp:
            return moveCaret(kPage);
        case Qt::Key_Home:
            return moveCaret(-caretRange_);
        case Qt::Key_End:
            return moveCaret(caretRange_);
        default:
            event->ignore();
    }
}

void AreaWidget::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    const auto reason = event->reason();
    usesKeys_ = usesKeys_ || reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
}

void AreaWidget::paintEvent(QPaintEvent* /*event*/) {
    if (!hasFocus()) return;
    QPainter painter(this);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
    if (caretRange_ <= 0 || !usesKeys_) return;
    const int caret = caretX();
    const QRectF line(caret - 0.5, 1, 2, height() - 2);
    painter.fillRect(line.adjusted(-1, 0, 1, 0), palette().color(QPalette::Base));
    painter.fillRect(line, palette().color(QPalette::Highlight));
}

void AreaControl::place(const LayoutItem& item) {
    PanelControl::place(item);
    area_->raise();  // it may cover another control
}

AreaControl::AreaControl(const ControlSeed& seed)
    : PanelControl(seed), area_(new AreaWidget(seed.canvas)) {
    QSize size(0, 0);
    if (seed.description.type == HOST_VALUE_AREA) {
        const auto& requested = seed.description.of.area;
        size = QSize(requested.width, requested.height).expandedTo(QSize(0, 0));
    }
    if (size.width() > kMaxButtonWidth) area_->setCaretRange(size.width());
    setField(area_, LayoutKind::Area, size);
    connect(area_, &AreaWidget::pressed, this, [this] { fire(); });
}

}  // namespace tavora::studio
