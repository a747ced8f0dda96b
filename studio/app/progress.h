#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>
#include <string>

#include "studio/app/requests.h"

namespace tavora::studio {

/// Predicts how long the rest of a film takes, from the mean time of the last frames and the
/// progress of the current one, whose weight grows as it proceeds.
class FrameTimes {
  public:
    /// Adds the time of a frame that is done.
    void add(double seconds);

    /// The seconds that are left for the current frame, of which the fraction `done` took
    /// `elapsed` seconds, and for `after` more frames. Empty as long as there is no basis for a
    /// prediction.
    std::optional<double> left(double done, double elapsed, std::size_t after) const;

  private:
    std::deque<double> last_;
};

/// How a frame's file was made, if it was.
enum class FrameState { Rendered, Held, Skipped };

/// Statistics of a whole run.
struct RenderSummary {
    std::size_t rendered = 0;
    std::size_t held = 0;
    std::size_t skipped = 0;
    std::size_t failed = 0;
    double seconds = 0;       ///< from start to end
    double frameSeconds = 0;  ///< mean of the rendered frames
    double slowestSeconds = 0;
    double rays = 0;           ///< mean of the rendered frames
    double peakMegabytes = 0;  ///< of the process
};

/// Shows the progress of a render on stderr: a bar with the time left for people, or lines for
/// programs and render farms. A still is a film of one frame without a number. One thread at a
/// time.
class Progress {
  public:
    /// Auto means a bar on a terminal that can overwrite a line, else none. Without such a
    /// terminal, a bar is written as a line for every tenth of the work.
    Progress(ProgressKind kind, bool quiet);
    /// Erases the bar.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Begins a film of `frames`, of which `renders` are expected to need rendering.
    void start(std::size_t frames, std::size_t renders);
    void beginFrame(std::optional<int> frame, const std::string& file);
    /// `done` is the finished fraction of the current frame, 0..1.
    void update(double done);
    void endFrame(FrameState state);
    /// Reports the error of a frame, after which the film continues.
    void error(const std::string& message);
    /// Reports an error that ends the run.
    void fail(const std::string& message);
    void end(const RenderSummary& summary);

    /// Erases the bar until the next update, so that other lines can be written.
    void clear();

  private:
    using Clock = std::chrono::steady_clock;

    void say(const std::string& line);
    void show(double inFrame);
    void showBar(const std::string& bar, double done);
    void showPercent(double done);

    ProgressKind kind_;
    bool redraws_;        ///< standard error is a terminal on which a line can be overwritten
    int tenthShown_ = 0;  ///< the last one, of lines in place of a bar
    std::optional<int> percentShown_;
    Clock::time_point start_;
    Clock::time_point shown_;
    bool barShown_ = false;
    FrameTimes times_;
    std::size_t frames_ = 1;
    std::size_t renders_ = 1;  ///< expected in total
    std::size_t rendersDone_ = 0;
    std::size_t framesDone_ = 0;
    std::optional<int> frame_;
    std::string file_;
    Clock::time_point frameStart_;
};

/// A bar of `width` characters; `done` is 0..1, `left` the seconds that are left.
std::string progressBar(double done, std::optional<double> left, int width);

}  // namespace tavora::studio
