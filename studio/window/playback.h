#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include "studio/window/session.h"

namespace tavora::studio {

/// Plays a session's scene over and over in real time: frames that cannot be rendered in
/// time are left out, and none that was begun is dropped before it is seen. GUI thread.
class Playback : public QObject {
    Q_OBJECT
  public:
    static constexpr double kFps = 24;

    Playback();

    /// `session` must outlive it or the next call; null: none.
    void show(Session* session);

    /// Whether there is more than one frame to be seen.
    bool canPlay() const { return session_ != nullptr && firstFrame() < lastFrame(); }
    bool isPlaying() const { return timer_.isActive(); }
    void setPlaying(bool play);

    /// Frame f is at the time f / kFps; those that lie within what plays.
    int firstFrame() const;
    int lastFrame() const;
    /// The frame that is shown or comes next.
    int frame() const;
    /// Goes to a frame and stays there.
    void goTo(int frame);
    /// To one of those beside it, round the ends.
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
