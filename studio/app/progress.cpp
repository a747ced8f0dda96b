#include "studio/app/progress.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

#include "studio/files/standard_streams.h"

namespace tavora::studio {
namespace {

constexpr double kFirstEstimate = 0.01;  // share done before the time left means anything

// Whether a line on standard error can be drawn over.
bool canRedraw() {
    const char* terminal = std::getenv("TERM");
    const bool able =
        terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
    return able && ::isatty(STDERR_FILENO) == 1;
}

ProgressKind settled(ProgressKind kind, bool quiet) {
    if (kind != ProgressKind::Auto) return kind;
    return !quiet && canRedraw() ? ProgressKind::Bar : ProgressKind::None;
}

int terminalWidth() {
    constexpr int kUsual = 80;
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsual;
    return size.ws_col;
}

double secondsLeft(double done, double elapsed) {
    return elapsed * (1 - done) / done;
}

std::string clockText(double seconds) {
    const auto whole = static_cast<long>(std::ceil(seconds));
    if (whole >= 3600) {
        return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
    }
    return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

}  // namespace

std::string progressBar(double done, double elapsed, int width) {
    const std::string left = done >= kFirstEstimate
                                 ? fmt::format(" {} left", clockText(secondsLeft(done, elapsed)))
                                 : std::string();
    const std::string percent = fmt::format(" {:3.0f}%", std::floor(done * 100));
    const auto taken = static_cast<int>(percent.size() + left.size()) + 3;
    const int room = std::clamp(width - taken, 0, 50);
    const auto full = static_cast<int>(done * room);
    return fmt::format("[{}{}]{}{}", std::string(static_cast<std::size_t>(full), '#'),
                       std::string(static_cast<std::size_t>(room - full), '.'), percent, left);
}

std::string progressJson(double done, double elapsed) {
    const std::string left = done >= kFirstEstimate
                                 ? fmt::format(",\"left\":{:.3f}", secondsLeft(done, elapsed))
                                 : std::string();
    return fmt::format("{{\"event\":\"progress\",\"done\":{:.4f},\"elapsed\":{:.3f}{}}}", done,
                       elapsed, left);
}

Progress::Progress(ProgressKind kind, bool quiet)
    : kind_(settled(kind, quiet)), redraws_(canRedraw()), start_(Clock::now()) {}

Progress::~Progress() {
    if (barShown_) writeError("\r\x1b[K");
}

void Progress::update(double done) {
    constexpr std::chrono::milliseconds kPause(100);
    if (kind_ == ProgressKind::None) return;
    const Clock::time_point now = Clock::now();
    if (now - shown_ < kPause && done < 1) return;
    shown_ = now;
    done = std::clamp(done, 0.0, 1.0);
    const double elapsed = std::chrono::duration<double>(now - start_).count();
    if (kind_ == ProgressKind::Json) {
        writeError(progressJson(done, elapsed) + "\n");
    } else {
        showBar(progressBar(done, elapsed, terminalWidth()), done);
    }
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
    writeError(bar + "\n");
}

}  // namespace tavora::studio
