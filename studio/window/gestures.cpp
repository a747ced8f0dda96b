#include "studio/window/gestures.h"

#include <QApplication>
#include <QKeyEvent>

namespace tavora::studio {
namespace {

/// The pause, in milliseconds, after which turning the wheel is a new gesture.
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
    if (!buttonHeld_) {
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
            buttonHeld_ = true;
            break;
        case QEvent::MouseButtonRelease:
            buttonHeld_ = static_cast<QMouseEvent*>(event)->buttons() != Qt::NoButton;
            break;
        case QEvent::KeyPress:
            // The same key event is also sent to the QWindow, which must not count.
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
