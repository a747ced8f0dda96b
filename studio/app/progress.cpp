#include "studio/app/progress.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>
#include <numeric>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "studio/files/standard_streams.h"

namespace tavora::studio {
namespace {

constexpr double kFirstEstimate = 0.01;  // fraction of a frame that must be done to extrapolate
constexpr std::size_t kLastFrames = 8;   // whose mean predicts the next ones

using Json = nlohmann::ordered_json;

double secondsBetween(std::chrono::steady_clock::time_point start,
                      std::chrono::steady_clock::time_point end) {
    return std::chrono::duration<double>(end - start).count();
}

// Rounds to milliseconds, to keep lines short.
double rounded(double seconds) {
    return std::round(seconds * 1000) / 1000;
}

std::string lineOf(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Whether standard error is a terminal on which a line can be overwritten.
bool canRedraw() {
    const char* terminal = std::getenv("TERM");
    const bool able =
        terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
    return able && ::isatty(STDERR_FILENO) == 1;
}

ProgressKind resolvedKind(ProgressKind kind, bool quiet) {
    if (kind != ProgressKind::Auto) return kind;
    return !quiet && canRedraw() ? ProgressKind::Bar : ProgressKind::None;
}

int terminalWidth() {
    constexpr int kUsual = 80;
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsual;
    return size.ws_col;
}

std::string clockText(double seconds) {
    const auto whole = static_cast<long>(std::ceil(seconds));
    if (whole >= 3600) {
        return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
    }
    return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

}  // namespace

void FrameTimes::add(double seconds) {
    last_.push_back(seconds);
    if (last_.size() > kLastFrames) last_.pop_front();
}

std::optional<double> FrameTimes::left(double done, double elapsed, std::size_t after) const {
    const bool canExtrapolate = done >= kFirstEstimate;
    if (last_.empty() && !canExtrapolate) return {};
    const double extrapolated = canExtrapolate ? elapsed / done : 0;
    const double mean = last_.empty() ? extrapolated
                                      : std::accumulate(last_.begin(), last_.end(), 0.0) /
                                            static_cast<double>(last_.size());
    const double weight = last_.empty() ? 1 : canExtrapolate ? done : 0;
    const double whole = std::max(weight * extrapolated + (1 - weight) * mean, elapsed);
    return whole * (1 - done) + mean * static_cast<double>(after);
}

std::string progressBar(double done, std::optional<double> left, int width) {
    const std::string time = left ? fmt::format(" {} left", clockText(*left)) : std::string();
    const std::string percent = fmt::format(" {:3.0f}%", std::floor(done * 100));
    const auto taken = static_cast<int>(percent.size() + time.size()) + 3;
    const int room = std::clamp(width - taken, 0, 50);
    const auto full = static_cast<int>(done * room);
    return fmt::format("[{}{}]{}{}", std::string(static_cast<std::size_t>(full), '#'),
                       std::string(static_cast<std::size_t>(room - full), '.'), percent, time);
}

Progress::Progress(ProgressKind kind, bool quiet)
    : kind_(resolvedKind(kind, quiet)),
      redraws_(canRedraw()),
      start_(Clock::now()),
      frameStart_(start_) {}

Progress::~Progress() {
    clear();
}

void Progress::clear() {
    if (barShown_) writeError("\r\x1b[K");
    barShown_ = false;
}

void Progress::say(const std::string& line) {
    writeError(line + "\n");
}

void Progress::start(std::size_t frames, std::size_t renders) {
    frames_ = frames;
    renders_ = renders;
    if (kind_ == ProgressKind::Json) say(lineOf({{"event", "start"}, {"frames", frames}}));
}

void Progress::beginFrame(std::optional<int> frame, const std::string& file) {
    frame_ = frame;
    file_ = file;
    frameStart_ = Clock::now();
    if (kind_ == ProgressKind::Json && frame)
        say(lineOf({{"event", "frame"}, {"frame", *frame}, {"file", file}}));
    if (kind_ == ProgressKind::OpenJd && frame) {
        say(fmt::format("openjd_status: frame {}, {} of {}", *frame, framesDone_ + 1, frames_));
    }
}

void Progress::update(double done) {
    constexpr std::chrono::milliseconds kPause(100);
    if (kind_ == ProgressKind::None) return;
    const Clock::time_point now = Clock::now();
    const bool isLast = done >= 1 && framesDone_ + 1 == frames_;
    if (now - shown_ < kPause && !isLast) return;
    shown_ = now;
    show(std::clamp(done, 0.0, 1.0));
}

void Progress::show(double inFrame) {
    const Clock::time_point now = Clock::now();
    const std::size_t all = std::max(renders_, rendersDone_ + 1);
    const double done =
        std::min(1.0, (static_cast<double>(rendersDone_) + inFrame) / static_cast<double>(all));
    const std::optional<double> left =
        times_.left(inFrame, secondsBetween(frameStart_, now), all - rendersDone_ - 1);
    if (kind_ == ProgressKind::Bar) {
        const std::string frame =
            frame_ ? fmt::format("frame {}, {} of {} ", *frame_, framesDone_ + 1, frames_) : "";
        const int room = terminalWidth() - static_cast<int>(frame.size());
        showBar(frame + progressBar(done, left, room), done);
    } else if (kind_ == ProgressKind::Json) {
        Json json{{"event", "progress"},
                  {"done", std::round(done * 10000) / 10000},
                  {"elapsed", rounded(secondsBetween(start_, now))}};
        if (left) json["left"] = rounded(*left);
        if (frame_) json["frame"] = *frame_;
        say(lineOf(json));
    } else {
        showPercent(done);
    }
}

void Progress::showPercent(double done) {
    const auto percent = static_cast<int>(done * 100);
    if (percent == percentShown_) return;
    percentShown_ = percent;
    say(kind_ == ProgressKind::Alf ? fmt::format("ALF_PROGRESS {}%", percent)
                                   : fmt::format("openjd_progress: {}", percent));
}

void Progress::showBar(const std::string& bar, double done) {
    if (redraws_) {
        writeError("\r\x1b[K" + bar);
        barShown_ = true;
        return;
    }
    const auto tenth = static_cast<int>(done * 10);
    if (tenth <= tenthShown_) return;
    tenthShown_ = tenth;
    say(bar);
}

void Progress::endFrame(FrameState state) {
    const double seconds = secondsBetween(frameStart_, Clock::now());
    ++framesDone_;
    if (state == FrameState::Rendered) {
        ++rendersDone_;
        times_.add(seconds);
    }
    if (kind_ == ProgressKind::Json) {
        const char* const names[] = {"rendered", "held", "skipped"};
        Json json{{"event", "file"}};
        if (frame_) json["frame"] = *frame_;
        json.update({{"file", file_},
                     {"state", names[static_cast<std::size_t>(state)]},
                     {"seconds", rounded(seconds)}});
        say(lineOf(json));
    }
    const bool isFarm = kind_ == ProgressKind::Alf || kind_ == ProgressKind::OpenJd;
    if (isFarm && framesDone_ == frames_) showPercent(1);
}

void Progress::error(const std::string& message) {
    clear();
    if (kind_ == ProgressKind::OpenJd) say("openjd_status: " + message);
    if (kind_ != ProgressKind::Json) return;
    Json json{{"event", "error"}};
    if (frame_) json["frame"] = *frame_;
    json["message"] = message;
    say(lineOf(json));
}

void Progress::fail(const std::string& message) {
    error(message);
    if (kind_ == ProgressKind::OpenJd) say("openjd_fail: " + message);
}

void Progress::end(const RenderSummary& summary) {
    clear();
    if (kind_ != ProgressKind::Json) return;
    say(lineOf({{"event", "end"},
                {"rendered", summary.rendered},
                {"held", summary.held},
                {"skipped", summary.skipped},
                {"failed", summary.failed},
                {"seconds", rounded(summary.seconds)},
                {"frame_seconds", rounded(summary.frameSeconds)},
                {"rays", std::round(summary.rays)},
                {"peak_megabytes", std::round(summary.peakMegabytes)}}));
}

}  // namespace tavora::studio
