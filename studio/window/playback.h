#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include "studio/window/session.h"

namespace tavora::studio {

/// Plays a session's scene repeatedly in real time. Frames that cannot be rendered in time are
/// skipped, but a frame that was begun is always shown. GUI thread.
class Playback : public QObject {
    Q_OBJECT
  public:
    static constexpr double kFps = 24;

    Playback();

    /// `session` must outlive this object, or exist until the next call; null: none.
    void show(Session* session);

    /// Whether there is more than one frame.
    bool canPlay() const { return session_ != nullptr && firstFrame() < lastFrame(); }
    bool isPlaying() const { return timer_.isActive(); }
    void setPlaying(bool play);

    /// The first and the last frame in the session's range; frame f is at the time f / kFps.
    int firstFrame() const;
    int lastFrame() const;
    /// The frame that is shown, or will be shown next.
    int frame() const;
    /// Stops playing and shows a frame.
    void goTo(int frame);
    /// Stops playing and moves by some frames, from the last to the first and back.
    void step(int frames);

  signals:
    void playingChanged();

  private:
    void tick();
    void show(int frame);
    int frameNow() const;

    Session* session_ = nullptr;
    QTimer timer_;
    QElapsedTimer clock_;
    double startedAt_ = 0;  ///< time of the scene when the clock was started, in seconds
};

}  // namespace tavora::studio
