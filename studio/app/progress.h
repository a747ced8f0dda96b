#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>
#include <string>

#include "studio/app/requests.h"

namespace tavora::studio {

/// How long frames of one film take, to tell how long the rest will. The last ones count,
/// since neighbours are alike; the one in hand counts the more, the further it is.
class FrameTimes {
  public:
    void add(double seconds);

    /// Seconds left: of the frame in hand, `done` (0..1) after `elapsed` seconds, and
    /// `after` more. None before anything can be told.
    std::optional<double> left(double done, double elapsed, std::size_t after) const;

  private:
    std::deque<double> last_;
};

/// What became of a frame's file.
enum class FrameState { Rendered, Held, Skipped };

/// What a render came to.
struct RenderSummary {
    std::size_t rendered = 0;
    std::size_t held = 0;
    std::size_t skipped = 0;
    std::size_t failed = 0;
    double seconds = 0;       ///< from start to end
    double frameSeconds = 0;  ///< mean of the frames rendered, as the next
    double slowestSeconds = 0;
    double rays = 0;           ///< a frame
    double peakMegabytes = 0;  ///< of the process
};

/// Shows on stderr how far a render is: a bar with the time left for people, lines for
/// programs and for render farms. A still is a film of one frame without a number. Calls
/// from one thread at a time.
class Progress {
  public:
    /// Auto is a bar on a terminal that can redraw a line, else none. A bar that is asked
    /// for where no line can be redrawn becomes a line at every tenth.
    Progress(ProgressKind kind, bool quiet);
    /// Takes the bar off the terminal.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Of a film: its frames, and how many of them are expected to need rendering.
    void start(std::size_t frames, std::size_t renders);
    void beginFrame(std::optional<int> frame, const std::string& file);
    /// `done`: the share of the frame in hand, 0..1.
    void update(double done);
    void endFrame(FrameState state);
    /// Of a frame; the others go on.
    void error(const std::string& message);
    /// That ends the run.
    void fail(const std::string& message);
    void end(const RenderSummary& summary);

    /// Takes the bar off the terminal until the next update, for other lines.
    void clear();

  private:
    using Clock = std::chrono::steady_clock;

    void say(const std::string& line);
    void show(double inFrame);
    void showBar(const std::string& bar, double done);
    void showPercent(double done);

    ProgressKind kind_;
    bool redraws_;        ///< standard error is a terminal that moves its cursor
    int tenthShown_ = 0;  ///< of the lines that stand for a bar
    int percentShown_ = -1;
    Clock::time_point start_;
    Clock::time_point shown_;
    bool barShown_ = false;
    FrameTimes times_;
    std::size_t frames_ = 1;
    std::size_t renders_ = 1;  ///< expected, those done included
    std::size_t rendersDone_ = 0;
    std::size_t framesDone_ = 0;
    std::optional<int> frame_;
    std::string file_;
    Clock::time_point frameStart_;
};

/// One line of a bar `width` characters wide.
std::string progressBar(double done, std::optional<double> left, int width);

}  // namespace tavora::studio
