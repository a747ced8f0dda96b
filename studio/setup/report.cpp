#include "studio/setup/report.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>
#include <utility>

#include "studio/files/output_target.h"
#include "studio/files/standard_streams.h"
#include "studio/util/error.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

bool colored() {
    const char* noColor = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    const bool wanted = noColor == nullptr || *noColor == '\0';
    return wanted && terminal != nullptr && std::string_view(terminal) != "dumb" &&
           ::isatty(STDERR_FILENO) == 1;
}

void say(std::string_view color, std::string_view label, const std::string& text) {
    const bool paint = colored() && !color.empty();
    writeError(
        fmt::format("{}tavora:{} {}{}\n", paint ? color : "", paint ? "\x1b[0m" : "", label, text));
}

}  // namespace

Report::Report(const ReportOptions& options) : options_(options) {
    constexpr mode_t kPermissions = 0666;  // less the process's mask
    if (options.logFile.empty()) return;
    log_ = ::open(options.logFile.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, kPermissions);
    if (log_ < 0)
        throw Error(Fault::Output, outputMessage(options.logFile, "cannot be written", errno));
}

Report::~Report() {
    closeLog();
}

void Report::closeLog() {
    if (log_ >= 0) ::close(std::exchange(log_, -1));
}

void Report::log(std::string_view text) {
    if (log_ < 0) return;
    const std::string line = fmt::format("{}\n", text);
    const ssize_t written = ::write(log_, line.data(), line.size());
    if (written == static_cast<ssize_t>(line.size())) return;
    const int error = written < 0 ? errno : ENOSPC;
    closeLog();
    warning(outputMessage(options_.logFile, "is incomplete", error));
}

void Report::error(std::string_view text) {
    const std::string line = oneLine(text);
    say("\x1b[1;31m", "", line);
    log("error: " + line);
}

void Report::warning(std::string_view text) {
    const std::string line = oneLine(text);
    if (!options_.quiet) say("\x1b[1;33m", "warning: ", line);
    log("warning: " + line);
}

void Report::note(int verbosity, std::string_view text) {
    const std::string line = oneLine(text);
    if (!options_.quiet && options_.verbosity >= verbosity) say("", "", line);
    log(line);
}

}  // namespace tavora::studio
