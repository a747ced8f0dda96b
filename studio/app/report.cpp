#include "studio/app/report.h"

#include <cerrno>
#include <cstdlib>
#include <fmt/format.h>
#include <system_error>
#include <unistd.h>

#include "studio/files/output_error.h"
#include "studio/files/output_place.h"

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
    fmt::print(stderr, "{}tavora:{} {}{}\n", paint ? color : "", paint ? "\x1b[0m" : "", label,
               text);
}

}  // namespace

Report::Report(const ReportOptions& options) : options_(options) {
    if (options.logFile.empty()) return;
    log_ = std::fopen(options.logFile.c_str(), "ae");
    if (log_ == nullptr) {
        throw OutputError(outputMessage(options.logFile, "cannot be written", errno));
    }
}

Report::~Report() {
    if (log_ != nullptr) std::fclose(log_);
}

void Report::log(std::string_view text) {
    if (log_ == nullptr) return;
    fmt::print(log_, "{}\n", text);
    std::fflush(log_);
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

void Report::note(int level, std::string_view text) {
    const std::string line = oneLine(text);
    if (!options_.quiet && options_.verbosity >= level) say("", "", line);
    log(line);
}

std::string oneLine(std::string_view text) {
    std::string line(text);
    for (char& c : line) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7f) c = '?';
    }
    return line;
}

void writeOut(std::string_view text) {
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (written && std::fflush(stdout) == 0) return;
    throw OutputError(outputMessage("standard output", "cannot be written", errno));
}

}  // namespace tavora::studio
