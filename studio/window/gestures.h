#pragma once

#include <QElapsedTimer>
#include <QObject>

#include "studio/edit/document.h"

namespace tavora::studio {

/// Counts what the user's hands do, over all windows of the program: a press of
/// the mouse until the next one, a key with its repeats, a spell of turning the
/// wheel are one gesture each. GUI thread; one a process, after the application.
class Gestures : public QObject {
  public:
    Gestures();

    /// The gesture at work, or the last one; never 0.
    Gesture current() const { return current_; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    Gesture current_ = 1;
    QElapsedTimer sinceWheel_;
};

}  // namespace tavora::studio
