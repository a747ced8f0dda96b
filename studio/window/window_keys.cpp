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

/// Whether a text field has the focus in which typing can be undone, before steps of the scene are.
bool fieldHandlesUndo() {
    const auto* field = qobject_cast<const QLineEdit*>(QApplication::focusWidget());
    return field != nullptr && field->isUndoAvailable() && field->isModified();
}

}  // namespace

WindowKeys::WindowKeys() {
    qApp->installEventFilter(this);
}

bool WindowKeys::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::ShortcutOverride:
            // An accepted override is followed by a key press event.
            if (watched->isWidgetType() && actionOf(*static_cast<QKeyEvent*>(event)) != nullptr) {
                event->accept();
                return true;
            }
            return false;
        case QEvent::KeyPress:
            return watched->isWidgetType() && press(*static_cast<QKeyEvent*>(event));
        case QEvent::KeyRelease:
            return watched->isWidgetType() && release(*static_cast<QKeyEvent*>(event));
        case QEvent::ApplicationDeactivate:
            if (comparing_) emit compare(comparing_ = false);
            return false;
        default:
            return false;
    }
}

/// The action of a key; null for other keys, and for all keys while a modal dialog is open.
WindowKeys::Action WindowKeys::actionOf(const QKeyEvent& key) {
    if (QApplication::activeModalWidget() != nullptr) return nullptr;
    if (key.matches(QKeySequence::Save)) return &WindowKeys::save;
    if (key.matches(QKeySequence::HelpContents)) return &WindowKeys::help;
    if (fieldHandlesUndo()) return nullptr;
    if (key.matches(QKeySequence::Undo)) return &WindowKeys::undo;
    return isRedo(key) ? &WindowKeys::redo : nullptr;
}

bool WindowKeys::press(const QKeyEvent& key) {
    if (isCompare(key) && !isTyping() && QApplication::activeModalWidget() == nullptr) {
        if (!key.isAutoRepeat()) emit compare(comparing_ = true);
        return true;
    }
    const Action action = actionOf(key);
    if (action == nullptr) return false;
    emit(this->*action)();
    return true;
}

bool WindowKeys::release(const QKeyEvent& key) {
    if (!comparing_ || key.key() != Qt::Key_C) return false;
    if (!key.isAutoRepeat()) emit compare(comparing_ = false);
    return true;
}

}  // namespace tavora::studio
