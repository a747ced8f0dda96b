#include "studio/window/gestures.h"

#include <QApplication>
#include <QKeyEvent>

namespace tavora::studio {
namespace {

/// A pause longer than this, in milliseconds, ends a spell of the wheel.
constexpr qint64 kWheelPause = 600;

}  // namespace

Gestures::Gestures() {
    sinceWheel_.start();
    qApp->installEventFilter(this);
}

bool Gestures::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            ++current_;
            break;
        case QEvent::KeyPress:
            if (!static_cast<QKeyEvent*>(event)->isAutoRepeat()) ++current_;
            break;
        case QEvent::Wheel:
            if (sinceWheel_.restart() > kWheelPause) ++current_;
            break;
        default:
            break;
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace tavora::studio
