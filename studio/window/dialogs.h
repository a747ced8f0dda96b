#pragma once

#include <QString>
#include <functional>

class QWidget;

namespace tavora::studio {

/// Runs `work`, and shows an exception in a dialog; false when it threw. Slots and event handlers
/// must not let exceptions through. GUI thread.
bool guarded(QWidget* window, const std::function<void()>& work);

/// Shows an error dialog and waits until it is closed.
void showError(QWidget* window, const QString& text);

/// As long as an object of this class exists, messages of modules are shown as dialogs over
/// `window`, from its event loop. A text is not shown again while a dialog shows it.
class MessageDialogs {
  public:
    explicit MessageDialogs(QWidget& window);
    ~MessageDialogs();
    MessageDialogs(const MessageDialogs&) = delete;
    MessageDialogs& operator=(const MessageDialogs&) = delete;
};

}  // namespace tavora::studio
