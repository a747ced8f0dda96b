#pragma once

#include <QElapsedTimer>
#include <QObject>

#include "studio/edit/undo_stack.h"

class QKeyEvent;

namespace tavora::studio {

/// Counts what the user's hands do, over all windows of the program: a press of
/// the mouse until the next one with the keys struck meanwhile, a key with its
/// repeats, a spell of turning the wheel are one gesture each. GUI thread; one a
/// process, after the application.
class Gestures : public QObject {
    Q_OBJECT
  public:
    Gestures();

    /// The gesture at work, or the last one; never 0.
    Gesture current() const { return current_; }

  signals:
    /// Esc was struck while a button of the mouse was held, and has been dealt with.
    void abandoned(Gesture gesture);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void begin();
    void keyPressed(const QKeyEvent& key);

    Gesture current_ = 1;
    bool held_ = false;         ///< a button of the mouse is
    QElapsedTimer sinceWheel_;  ///< invalid where something else came after
};

}  // namespace tavora::studio
