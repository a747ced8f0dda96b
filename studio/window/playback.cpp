#include "studio/window/playback.h"

#include <algorithm>
#include <cmath>

namespace tavora::studio {
namespace {

constexpr int kTick = 5;  // milliseconds, well below the time of a frame

/// A fraction of a frame: times this near to a frame count as it, so that rounding does not matter.
constexpr double kFrameTolerance = 1e-6;

}  // namespace

Playback::Playback() {
    timer_.setInterval(kTick);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &Playback::tick);
}

void Playback::show(Session* session) {
    setPlaying(false);
    session_ = session;
}

void Playback::setPlaying(bool play) {
    if (play == isPlaying() || (play && !canPlay())) return;
    if (play) {
        startedAt_ = session_->time();
        clock_.start();
        timer_.start();
    } else {
        timer_.stop();
    }
    emit playingChanged();
}

int Playback::firstFrame() const {
    return static_cast<int>(std::ceil(session_->range().start * kFps - kFrameTolerance));
}

int Playback::lastFrame() const {
    return static_cast<int>(std::floor(session_->range().end * kFps + kFrameTolerance));
}

int Playback::frame() const {
    return static_cast<int>(std::floor(session_->time() * kFps + kFrameTolerance));
}

void Playback::goTo(int frame) {
    setPlaying(false);
    show(frame);
}

void Playback::step(int frames) {
    const int count = lastFrame() - firstFrame() + 1;
    if (count < 1) return;
    const int steps = (frame() - firstFrame() + frames) % count;
    goTo(firstFrame() + (steps + count) % count);
}

/// The frame to show now; playback repeats, so the end of the range is the same as its start.
int Playback::frameNow() const {
    const TimeRange& range = session_->range();
    const double played = startedAt_ - range.start + static_cast<double>(clock_.elapsed()) / 1000;
    const double time = range.start + std::fmod(played, range.end - range.start);
    return static_cast<int>(std::floor(time * kFps + kFrameTolerance));
}

void Playback::tick() {
    if (!session_->failure().empty()) return setPlaying(false);
    if (session_->isTimePending()) return;
    const int now = frameNow();
    if (now != frame()) show(now);
}

void Playback::show(int frame) {
    session_->setTime(std::clamp(frame, firstFrame(), lastFrame()) / kFps);
}

}  // namespace tavora::studio
