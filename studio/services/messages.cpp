#include "studio/services/messages.h"

#include <fmt/format.h>
#include <mutex>

#include "studio/files/standard_streams.h"
#include "studio/services/service_tables.h"

namespace tavora::studio {
namespace {

std::mutex sinkMutex;
MessageSink currentSink;
thread_local int quiet = 0;

const char* label(MessageKind kind) {
    switch (kind) {
        case MessageKind::Info:
            return "";
        case MessageKind::Warning:
            return "warning: ";
        case MessageKind::Error:
            return "error: ";
    }
    return "";
}

/// Joins the lines of a module's message into one.
template <MessageKind kind>
void receive(const char* line1, const char* line2) {
    std::string text = line1 == nullptr ? "" : line1;
    if (line2 != nullptr && *line2 != '\0') text += std::string(": ") + line2;
    sendMessage(kind, text);
}

}  // namespace

void setMessageSink(MessageSink sink) {
    const std::lock_guard lock(sinkMutex);
    currentSink = std::move(sink);
}

void sendMessage(MessageKind kind, const std::string& text) {
    if (quiet > 0) return;
    const std::lock_guard lock(sinkMutex);
    if (currentSink) {
        currentSink(kind, text);
    } else {
        writeError(fmt::format("tavora: {}{}\n", label(kind), text));
    }
}

QuietMessages::QuietMessages() {
    ++quiet;
}

QuietMessages::~QuietMessages() {
    --quiet;
}

const HostMessages kMessages = {receive<MessageKind::Info>, receive<MessageKind::Error>,
                                receive<MessageKind::Warning>};

}  // namespace tavora::studio
