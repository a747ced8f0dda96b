#pragma once

#include <string>
#include <string_view>

#include "studio/app/requests.h"

namespace tavora::studio {

/// What the program says about its work, on stderr and in the log file. Neither
/// can fail the work: a log file that takes no more is told of once. Main thread.
class Report {
  public:
    /// Throws OutputError when the log file cannot be opened.
    explicit Report(const ReportOptions& options);
    ~Report();
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    /// The one line that a failed run ends with; --quiet keeps it.
    void error(std::string_view text);
    void warning(std::string_view text);
    /// For -v (level 1) and -v -v (level 2); the log file gets both.
    void note(int level, std::string_view text);

    bool quiet() const { return options_.quiet; }

  private:
    void log(std::string_view text);
    void closeLog();

    ReportOptions options_;
    int log_ = -1;  ///< descriptor
};

/// `text` with control characters replaced, so that no name in a file breaks a
/// line or speaks to the terminal.
std::string oneLine(std::string_view text);

}  // namespace tavora::studio
