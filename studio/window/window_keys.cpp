#include "studio/window/window_keys.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>

namespace tavora::studio {
namespace {

bool isTyping() {
    const auto* field = qobject_cast<const QLineEdit*>(QApplication::focusWidget());
    return field != nullptr || qobject_cast<const QAbstractSpinBox*>(QApplication::focusWidget());
}

bool isRedo(const QKeyEvent& key) {
    return key.matches(QKeySequence::Redo) ||
           (key.key() == Qt::Key_Z && key.modifiers() == (Qt::ControlModifier | Qt::ShiftModifier));
}

bool isCompare(const QKeyEvent& key) {
    return key.key() == Qt::Key_C && key.modifiers() == Qt::NoModifier;
}

/// A field takes back what was typed in it before steps of the scene are.
bool keepsUndo() {
    const auto* field = qobject_cast<const QLineEdit*>(QApplication::focusWidget());
    return field != nullptr && field->isUndoAvailable() && field->isModified();
}

}  // namespace

WindowKeys::WindowKeys() {
    qApp->installEventFilter(this);
}

bool WindowKeys::eventFilter(QObject* watched, QEvent* event) {
    if (!watched->isWidgetType()) return false;
    if (event->type() == QEvent::KeyPress) return press(*static_cast<QKeyEvent*>(event));
    if (event->type() == QEvent::KeyRelease) return release(*static_cast<QKeyEvent*>(event));
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        const bool ours = (key.matches(QKeySequence::Undo) || isRedo(key)) && !keepsUndo();
        if (ours) event->accept();  // comes again as a key press
        return ours;
    }
    if (event->type() == QEvent::ApplicationDeactivate && comparing_) {
        emit compare(comparing_ = false);
    }
    return false;
}

bool WindowKeys::press(const QKeyEvent& key) {
    if (isCompare(key) && !isTyping()) {
        if (!key.isAutoRepeat()) emit compare(comparing_ = true);
        return true;
    }
    if (keepsUndo()) return false;
    if (key.matches(QKeySequence::Undo)) {
        emit undo();
        return true;
    }
    if (isRedo(key)) {
        emit redo();
        return true;
    }
    return false;
}

bool WindowKeys::release(const QKeyEvent& key) {
    if (!comparing_ || key.key() != Qt::Key_C) return false;
    if (!key.isAutoRepeat()) emit compare(comparing_ = false);
    return true;
}

}  // namespace tavora::studio
