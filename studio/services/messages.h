#pragma once

#include <functional>
#include <string>

namespace tavora::studio {

enum class MessageKind { Info, Warning, Error };

/// Where messages of modules go: text is one line. Called by one thread at a time.
using MessageSink = std::function<void(MessageKind kind, const std::string& text)>;

/// Replaces the sink; an empty one restores the default, one line on stderr.
/// Any thread.
void setMessageSink(MessageSink sink);

/// Hands a message to the sink. Any thread.
void sendMessage(MessageKind kind, const std::string& text);

/// While it lives, messages from this thread go nowhere: for work that repeats
/// what was reported once.
class QuietMessages {
  public:
    QuietMessages();
    ~QuietMessages();
    QuietMessages(const QuietMessages&) = delete;
    QuietMessages& operator=(const QuietMessages&) = delete;
};

}  // namespace tavora::studio
