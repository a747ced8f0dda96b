#include "studio/window/gestures.h"

#include <QApplication>
#include <QKeyEvent>

namespace tavora::studio {
namespace {

/// A pause longer than this, in milliseconds, ends a spell of the wheel.
constexpr qint64 kWheelPause = 600;

}  // namespace

Gestures::Gestures() {
    qApp->installEventFilter(this);
}

void Gestures::begin() {
    ++current_;
    sinceWheel_.invalidate();
}

void Gestures::keyPressed(const QKeyEvent& key) {
    if (key.isAutoRepeat()) return;
    if (!held_) {
        begin();
    } else if (key.key() == Qt::Key_Escape) {
        QMetaObject::invokeMethod(
            this, [this, gesture = current_] { emit abandoned(gesture); }, Qt::QueuedConnection);
    }
}

bool Gestures::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            begin();
            held_ = true;
            break;
        case QEvent::MouseButtonRelease:
            held_ = static_cast<QMouseEvent*>(event)->buttons() != Qt::NoButton;
            break;
        case QEvent::KeyPress:
            // Each event passes on its way from a window to a widget, and up again.
            if (watched->isWidgetType()) keyPressed(*static_cast<QKeyEvent*>(event));
            break;
        case QEvent::Wheel:
            if (!sinceWheel_.isValid() || sinceWheel_.elapsed() > kWheelPause) begin();
            sinceWheel_.start();
            break;
        default:
            break;
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace tavora::studio
