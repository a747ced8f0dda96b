#pragma once

#include <chrono>
#include <string>

#include "studio/app/requests.h"

namespace tavora::studio {

/// Shows on stderr how far a render is: a bar with the time left for people,
/// JSON lines for programs. Calls from one thread at a time.
class Progress {
  public:
    /// Auto is a bar on a terminal, else none.
    Progress(ProgressKind kind, bool quiet);
    /// Takes the bar off the terminal.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// `done`: the share of the work, 0..1.
    void update(double done);

  private:
    using Clock = std::chrono::steady_clock;

    ProgressKind kind_;
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
