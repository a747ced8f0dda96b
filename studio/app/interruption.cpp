#include "studio/app/interruption.h"

#include <csignal>
#include <unistd.h>

#include "studio/app/exit_status.h"
#include "studio/files/atomic_file.h"
#include "studio/files/standard_streams.h"
#include "studio/files/written_mark.h"

namespace tavora::studio {
namespace {

std::atomic<bool> polite{false};
std::atomic<bool> resumable{false};
std::atomic<bool> stopAsked{false};
std::atomic<int> signalSeen{0};

void stop(int signal) {
    signalSeen.store(signal);
    if (polite.load() && !stopAsked.exchange(true)) return;
    removeUnfinishedFiles();
    for (const char* part : {"tavora: ", stoppedText(), "\n"})
        writeError(part);
    ::_exit(resumable.load() ? kResumable : kSignal + signal);
}

void handle(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
}

// What was ignored by whoever started the program (nohup) stays ignored.
void watch(int signal) {
    struct sigaction before {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) handle(signal, stop);
}

}  // namespace

void watchSignals() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        watch(signal);
    for (const int signal : {SIGPIPE, SIGXFSZ})
        handle(signal, SIG_IGN);
}

PoliteStop::PoliteStop(bool isResumable) {
    resumable.store(isResumable);
    polite.store(true);
}
PoliteStop::~PoliteStop() {
    resumable.store(false);
    polite.store(false);
}
const std::atomic<bool>& PoliteStop::asked() const {
    return stopAsked;
}

int stopSignal() {
    return signalSeen.load();
}

const char* stoppedText() noexcept {
    return anythingWritten() ? "stopped by a signal" : "stopped by a signal; nothing was written";
}

}  // namespace tavora::studio
