#include "studio/app/program.h"

#include <csignal>
#include <cxxabi.h>
#include <exception>
#include <fmt/format.h>
#include <new>
#include <set>
#include <string>
#include <system_error>
#include <typeinfo>
#include <unistd.h>

#include "studio/app/command_line.h"
#include "studio/app/commands.h"
#include "studio/app/exit_status.h"
#include "studio/app/interruption.h"
#include "studio/app/stopped.h"
#include "studio/files/atomic_file.h"
#include "studio/files/standard_streams.h"
#include "studio/render/final/renderer.h"
#include "studio/services/messages.h"
#include "studio/setup/report.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

constexpr const char* kNoMemory =
    "not enough memory; render a smaller picture or a crop of it, or close other programs";
constexpr const char* kNoThread =
    "no thread can be started; close other programs or raise the limits (ulimit -u, ulimit -v)";

// The message for an error by which the system refuses memory or threads; null for others.
const char* machineRefusal(const std::exception& error) {
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return kNoMemory;
    const auto* system = dynamic_cast<const std::system_error*>(&error);
    const bool again =
        system != nullptr && system->code() == std::errc::resource_unavailable_try_again;
    return again ? kNoThread : nullptr;
}

// The terminate handler. Libraries terminate the program when they get no memory or thread where
// they do not handle that. Allocates no memory.
[[noreturn]] void endTerminated() {
    removeUnfinishedFiles();
    const std::type_info* thrown = abi::__cxa_current_exception_type();
    const bool memory = thrown != nullptr && *thrown == typeid(std::bad_alloc);
    writeError("tavora: ");
    writeError(memory ? kNoMemory
                      : "internal fault, most likely for want of memory or threads; please "
                        "report it where both are plenty");
    writeError("\n");
    ::_exit(kInternal);
}

void watchTermination() {
    std::set_terminate(endTerminated);
}

// Libraries may run out of memory before main() begins.
[[gnu::section(".preinit_array"), gnu::used]] void (*const beforeLibraries)() = watchTermination;

// Runs each kind of request with its report.
struct Runner {
    const WindowCommands& window;
    Report& report;

    void operator()(const TextRequest& request) const { writeOut(request.text); }
    void operator()(const RenderRequest& request) const { render(request, report); }
    void operator()(const InfoRequest& request) const { showInfo(request, report); }
    void operator()(const SettingsRequest& request) const { showOrStoreSettings(request, report); }
    void operator()(const LooksRequest& request) const { listLooks(request, report); }
    void operator()(const MergeRequest& request) const { merge(request, report); }
    void operator()(const EditRequest& request) const { window.edit(request, report); }
    void operator()(const PanelRequest& request) const { window.drawPanel(request, report); }
};

ReportOptions reportOptions(const Request& request) {
    return std::visit(
        [](const auto& alternative) -> ReportOptions {
            if constexpr (requires { alternative.report; }) {
                return alternative.report;
            } else {
                return {};
            }
        },
        request);
}

// Reports the exception that is being handled and returns its exit status.
int reportException(Report& report) {
    try {
        throw;
    } catch (const Error& error) {
        report.error(error.what());
        return static_cast<int>(error.fault());
    } catch (const Stopped& stopped) {
        report.error(fmt::format("stopped by a signal; {}", stopped.what()));
        return stopped.isResumable() ? kResumable : kSignal + stopSignal();
    } catch (const SomeFailed& failed) {
        report.error(failed.what());
        return kSomeFailed;
    } catch (const RenderStopped&) {
        report.error(stoppedText());
        return kSignal + stopSignal();
    } catch (const ReaderGone&) {
        return kSignal + SIGPIPE;
    } catch (const std::exception& error) {
        const char* refusal = machineRefusal(error);
        report.error(refusal != nullptr
                         ? refusal
                         : fmt::format("internal fault: {}; please report it", error.what()));
    } catch (...) {
        report.error("internal fault; please report it");
    }
    return kInternal;
}

// Reports the messages of modules. Several instances may send the same one, which is reported
// once.
void reportModuleMessages(Report& report) {
    setMessageSink([&report, reported = std::set<std::string>()](MessageKind kind,
                                                                 const std::string& text) mutable {
        if (!reported.insert(text).second) return;
        if (kind == MessageKind::Info) {
            report.note(1, text);
        } else {
            report.warning(text);
        }
    });
}

int run(const Request& request, const WindowCommands& window, Report& report) {
    reportModuleMessages(report);
    int status = kDone;
    try {
        std::visit(Runner{window, report}, request);
    } catch (...) {
        status = reportException(report);
    }
    setMessageSink({});
    return status;
}

}  // namespace

int runProgram(int argc, char** argv, const WindowCommands& window) {
    openMissingStreams();
    watchSignals();
    Report plain{ReportOptions{}};
    try {
        const Request request = parseCommandLine(argc, argv);
        Report report(reportOptions(request));
        return run(request, window, report);
    } catch (...) {
        return reportException(plain);
    }
}

}  // namespace tavora::studio
