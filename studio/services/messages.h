#pragma once

#include <functional>
#include <string>

namespace tavora::studio {

enum class MessageKind { Info, Warning, Error };

/// Receives messages, each a line of text. Called by one thread at a time.
using MessageSink = std::function<void(MessageKind kind, const std::string& text)>;

/// Replaces the sink; an empty one restores the default, which writes a line to stderr. Any
/// thread.
void setMessageSink(MessageSink sink);

/// Hands a message to the sink. Any thread.
void sendMessage(MessageKind kind, const std::string& text);

/// As long as an object of this class exists, messages of its thread are discarded: for work
/// that would repeat messages.
class QuietMessages {
  public:
    QuietMessages();
    ~QuietMessages();
    QuietMessages(const QuietMessages&) = delete;
    QuietMessages& operator=(const QuietMessages&) = delete;
};

}  // namespace tavora::studio
