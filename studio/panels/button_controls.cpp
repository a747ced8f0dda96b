#include "studio/panels/button_controls.h"

#include <QKeyEvent>
#include <QStyleOptionButton>
#include <QStylePainter>

namespace tavora::studio {
namespace {

constexpr int kHeight = 19;  // rows of buttons stand 20 pixels apart
constexpr int kMargins = 12;
constexpr int kArrow = 7;
// Modules take two pixels of dragging as one step and ignore an odd pixel, so that a drag and its
// reverse would not end at the same value. Only even distances are reported.
constexpr int kStep = 2;
constexpr int kPage = 20;

QSize sizeFor(const QPushButton& button, const HostControlDescription& description, int extra) {
    const int requested = description.type == HOST_VALUE_AREA ? description.of.area.width : 0;
    const int text = button.fontMetrics().horizontalAdvance(button.text());
    return {std::max(requested, text + kMargins + extra), kHeight};
}

}  // namespace

ButtonControl::ButtonControl(const ControlSeed& seed) : PanelControl(seed) {
    auto* button = new QPushButton(seed.label, seed.canvas);
    // Enter confirms the panel; the space bar presses.
    button->setAutoDefault(false);
    setField(button, LayoutKind::Button, sizeFor(*button, seed.description, 0));
    connect(button, &QPushButton::clicked, this, [this] { fire(); });
}

DragButton::DragButton(const QString& text, QWidget* parent) : QPushButton(text, parent) {
    setAutoDefault(false);
    setCursor(Qt::SizeHorCursor);
}

void DragButton::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    pressX_ = event->position().toPoint().x();
    distance_ = 0;
    setDown(true);
    emit began();
}

void DragButton::mouseMoveEvent(QMouseEvent* event) {
    if (!isDown()) return;
    int distance = event->position().toPoint().x() - pressX_;
    distance -= distance % kStep;
    if (std::exchange(distance_, distance) != distance) emit moved(distance);
}

void DragButton::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) setDown(false);
}

void DragButton::keyPressEvent(QKeyEvent* event) {
    const auto drag = [this](int distance) {
        emit began();
        emit moved(distance);
    };
    switch (event->key()) {
        case Qt::Key_Left:
        case Qt::Key_Down:
            return drag(-kStep);
        case Qt::Key_Right:
        case Qt::Key_Up:
            return drag(kStep);
        case Qt::Key_PageDown:
            return drag(-kPage);
        case Qt::Key_PageUp:
            return drag(kPage);
        case Qt::Key_Escape:
            if (!isDown()) return event->ignore();
            setDown(false);
            if (std::exchange(distance_, 0) != 0) emit moved(0);
            return;
        default:
            event->ignore();
    }
}

void DragButton::paintEvent(QPaintEvent* /*event*/) {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    painter.drawControl(QStyle::CE_PushButton, option);
    const int top = (height() - kArrow) / 2;
    option.rect = QRect(5, top, kArrow, kArrow);
    painter.drawPrimitive(QStyle::PE_IndicatorArrowLeft, option);
    option.rect.moveRight(width() - 6);
    painter.drawPrimitive(QStyle::PE_IndicatorArrowRight, option);
    if (!hasFocus()) return;
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(2, 2, -3, -3));
}

DragButtonControl::DragButtonControl(const ControlSeed& seed) : PanelControl(seed) {
    auto* button = new DragButton(seed.label, seed.canvas);
    setField(button, LayoutKind::Button, sizeFor(*button, seed.description, 2 * kArrow + 4));
    connect(button, &DragButton::began, this, [this] {
        value_ = {0, 0, 0};
        fire();
    });
    connect(button, &DragButton::moved, this, [this](int distance) {
        value_ = {distance, 0, value_[2] + 1};
        fire();
    });
}

}  // namespace tavora::studio
