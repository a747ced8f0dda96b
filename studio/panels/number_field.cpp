#include "studio/panels/number_field.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleOption>
#include <algorithm>
#include <cmath>

namespace tavora::studio {
namespace {

constexpr int kPage = 10;      // steps
constexpr int kNotch = 120;    // of the wheel
constexpr double kFine = 0.1;  // of dragging with Shift

/// The number with as many decimals as it has, up to `decimals`.
QString textOf(double number, int decimals) {
    if (!std::isfinite(number)) return QStringLiteral("–");
    if (std::abs(number) >= 1e7) return QString::number(number, 'g', 4);
    QString text = QString::number(number, 'f', decimals);
    if (!text.contains(QLatin1Char('.'))) return text;
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('.'))) text.chop(1);
    return text == QStringLiteral("-0") ? QStringLiteral("0") : text;
}

}  // namespace

NumberField::NumberField(const Range& range, QWidget* parent) : QLineEdit(parent), range_(range) {
    setAlignment(Qt::AlignCenter);
    setContextMenuPolicy(Qt::NoContextMenu);
    setTyping(false);
    showNumber();
}

void NumberField::setNumber(double number) {
    number_ = number;
    showNumber();
}

void NumberField::showNumber() {
    setText(textOf(number_, range_.decimals));
    if (hasFocus() && !typing_) selectAll();
    update();
}

void NumberField::enter(double number) {
    const double scale = std::pow(10.0, range_.decimals);
    const double rounded = std::round(std::clamp(number, range_.minimum, range_.maximum) * scale);
    const bool same = number_ == rounded / scale;
    setNumber(rounded / scale);
    if (!same) emit entered();
}

bool NumberField::commit() {
    if (!isModified()) return false;
    bool isNumber = false;
    const double typed =
        text().trimmed().replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&isNumber);
    setTyping(false);
    if (isNumber && std::isfinite(typed)) {
        enter(typed);
    } else {
        showNumber();
    }
    return true;
}

/// Reverts the current drag, or discards what was typed. False when there was neither.
bool NumberField::revert() {
    if (std::exchange(dragging_, false)) {
        pressed_ = false;
        if (number_ == pressNumber_) return true;
        setNumber(pressNumber_);
        emit entered();
        return true;
    }
    if (!isModified()) return false;
    setTyping(false);
    showNumber();
    return true;
}

void NumberField::keyPressEvent(QKeyEvent* event) {
    const auto stepBy = [this](double steps) {
        commit();
        enter((std::isfinite(number_) ? number_ : 0) + steps);
    };
    switch (event->key()) {
        case Qt::Key_Up:
            return stepBy(1);
        case Qt::Key_Down:
            return stepBy(-1);
        case Qt::Key_PageUp:
            return stepBy(kPage);
        case Qt::Key_PageDown:
            return stepBy(-kPage);
        case Qt::Key_Return:
        case Qt::Key_Enter:
            // The key confirms the panel only when nothing was typed.
            if (commit()) return selectAll();
            return event->ignore();
        case Qt::Key_Escape:
            return revert() ? event->accept() : event->ignore();
        default:
            QLineEdit::keyPressEvent(event);
    }
}

void NumberField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    commit();
    setTyping(false);
}

void NumberField::setTyping(bool typing) {
    typing_ = typing;
    setCursor(typing ? Qt::IBeamCursor : Qt::SizeHorCursor);
}

void NumberField::mousePressEvent(QMouseEvent* event) {
    if (typing_ || event->button() != Qt::LeftButton) return QLineEdit::mousePressEvent(event);
    commit();
    pressed_ = true;
    dragging_ = false;
    pressX_ = event->position().toPoint().x();
    pressNumber_ = std::isfinite(number_) ? number_ : 0;
}

void NumberField::mouseMoveEvent(QMouseEvent* event) {
    // The release event is lost when an event of the drag disables or hides the field.
    if (!event->buttons().testFlag(Qt::LeftButton)) pressed_ = dragging_ = false;
    if (!pressed_) return QLineEdit::mouseMoveEvent(event);
    const int distance = event->position().toPoint().x() - pressX_;
    dragging_ = dragging_ || std::abs(distance) >= QApplication::startDragDistance() / 2;
    if (dragging_) dragTo(distance, event->modifiers().testFlag(Qt::ShiftModifier));
}

void NumberField::dragTo(int distance, bool fine) {
    const double moved = pressNumber_ + distance * range_.perPixel * (fine ? kFine : 1);
    enter(fine ? moved : std::round(moved));
}

void NumberField::mouseReleaseEvent(QMouseEvent* event) {
    if (!pressed_) return QLineEdit::mouseReleaseEvent(event);
    pressed_ = false;
    if (std::exchange(dragging_, false)) return;
    setTyping(true);
    selectAll();
}

void NumberField::mouseDoubleClickEvent(QMouseEvent* /*event*/) {
    setTyping(true);
    selectAll();
}

void NumberField::wheelEvent(QWheelEvent* event) {
    if (!hasFocus()) return event->ignore();
    wheel_ += event->angleDelta().y();
    const int notches = wheel_ / kNotch;
    wheel_ -= notches * kNotch;
    commit();
    if (notches != 0) enter((std::isfinite(number_) ? number_ : 0) + notches);
    event->accept();
}

void NumberField::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    if (!range_.bar || !std::isfinite(number_)) return;
    const double part = (number_ - range_.minimum) / (range_.maximum - range_.minimum);
    QRectF bar = QRectF(rect()).adjusted(2, 2, -2, -2);
    bar.setWidth(bar.width() * std::clamp(part, 0.0, 1.0));
    QColor color = palette().color(isEnabled() ? QPalette::Highlight : QPalette::Mid);
    QPainter painter(this);
    painter.fillRect(QRectF(bar.left(), bar.bottom() - 2, bar.width(), 2), color);
    color.setAlpha(isEnabled() ? 44 : 20);
    painter.fillRect(bar, color);
}

}  // namespace tavora::studio
