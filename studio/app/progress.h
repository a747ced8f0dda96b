#pragma once

#include <chrono>
#include <string>

#include "studio/app/requests.h"

namespace tavora::studio {

/// Shows on stderr how far a render is: a bar with the time left for people,
/// JSON lines for programs. Calls from one thread at a time.
class Progress {
  public:
    /// Auto is a bar on a terminal that can redraw a line, else none. A bar that is asked
    /// for where no line can be redrawn becomes a line at every tenth.
    Progress(ProgressKind kind, bool quiet);
    /// Takes the bar off the terminal.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// `done`: the share of the work, 0..1.
    void update(double done);

  private:
    using Clock = std::chrono::steady_clock;

    void showBar(const std::string& bar, double done);

    ProgressKind kind_;
    bool redraws_;        ///< standard error is a terminal that moves its cursor
    int tenthShown_ = 0;  ///< of the lines that stand for a bar
    Clock::time_point start_;
    Clock::time_point shown_;
    bool barShown_ = false;
};

/// One line of a bar `width` characters wide, for work `done` after `elapsed`
/// seconds. The time left shows once it can be told.
std::string progressBar(double done, double elapsed, int width);

/// {"event":"progress","done":0.25,"elapsed":1.5,"left":4.5}
std::string progressJson(double done, double elapsed);

}  // namespace tavora::studio
