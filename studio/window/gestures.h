#pragma once

#include <QElapsedTimer>
#include <QObject>

#include "studio/edit/undo_stack.h"

class QKeyEvent;

namespace tavora::studio {

/// Numbers the user's gestures, in all windows of the program. A gesture is a mouse press, with all
/// that follows until the next gesture and with keys pressed while a button is held; a key press
/// with its repetitions; or turning the wheel without a long pause. GUI thread; one in a process,
/// made after the application.
class Gestures : public QObject {
    Q_OBJECT
  public:
    Gestures();

    /// The current or last gesture; never 0.
    Gesture current() const { return current_; }

  signals:
    /// Escape was pressed while a mouse button was held, and the widget has handled it.
    void abandoned(Gesture gesture);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void begin();
    void keyPressed(const QKeyEvent& key);

    Gesture current_ = 1;
    bool buttonHeld_ = false;   ///< a mouse button is held
    QElapsedTimer sinceWheel_;  ///< invalid when another gesture came after the wheel
};

}  // namespace tavora::studio
