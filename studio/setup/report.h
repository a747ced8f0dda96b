#pragma once

#include <string>
#include <string_view>

namespace tavora::studio {

struct ReportOptions {
    int verbosity = 0;
    bool quiet = false;
    std::string logFile;
};

/// Writes messages to stderr and to the log file. Failing to write them never fails the
/// program's work: a log file that cannot be written is reported once. Main thread.
class Report {
  public:
    /// Throws Error, Fault::Output when the log file cannot be opened.
    explicit Report(const ReportOptions& options);
    ~Report();
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    /// The line with which a failed run ends; also written with --quiet.
    void error(std::string_view text);
    void warning(std::string_view text);
    /// Written to stderr with -v (verbosity 1) or -v -v (verbosity 2); always to the log file.
    void note(int verbosity, std::string_view text);

    bool quiet() const { return options_.quiet; }

  private:
    void log(std::string_view text);
    void closeLog();

    ReportOptions options_;
    int log_ = -1;  ///< descriptor
};

}  // namespace tavora::studio
