#pragma once

#include <string>
#include <string_view>

namespace tavora::studio {

struct ReportOptions {
    int verbosity = 0;
    bool quiet = false;
    std::string logFile;
};

/// What the program says about its work, on stderr and in the log file. Neither
/// can fail the work: a log file that takes no more is told of once. Main thread.
class Report {
  public:
    /// Throws Error, Fault::Output when the log file cannot be opened.
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

}  // namespace tavora::studio
