#include "studio/app/interruption.h"

#include <csignal>
#include <unistd.h>

#include "studio/app/exit_status.h"
#include "studio/files/atomic_file.h"
#include "studio/files/standard_streams.h"
#include "studio/files/written_mark.h"

namespace tavora::studio {
namespace {

std::atomic<bool> graceful{false};
std::atomic<bool> resumable{false};
std::atomic<bool> stopRequested{false};
std::atomic<int> receivedSignal{0};

void stop(int signal) {
    receivedSignal.store(signal);
    if (graceful.load() && !stopRequested.exchange(true)) return;
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

// A signal that the parent process had ignored (nohup) stays ignored.
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

GracefulStop::GracefulStop(bool isResumable) {
    resumable.store(isResumable);
    graceful.store(true);
}
GracefulStop::~GracefulStop() {
    resumable.store(false);
    graceful.store(false);
}
const std::atomic<bool>& GracefulStop::isRequested() const {
    return stopRequested;
}

int stopSignal() {
    return receivedSignal.load();
}

const char* stoppedText() noexcept {
    return anythingWritten() ? "stopped by a signal" : "stopped by a signal; nothing was written";
}

}  // namespace tavora::studio
