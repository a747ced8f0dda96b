#pragma once

#include <QString>
#include <functional>

class QWidget;

namespace tavora::studio {

/// Runs `work` and shows what it throws in a dialog; false when it threw.
/// Whatever a slot or an event handler may throw must stop here. GUI thread.
bool guarded(QWidget* window, const std::function<void()>& work);

/// An error dialog: the first sentence says what, `details` why.
void showError(QWidget* window, const QString& text);

/// While it lives, messages of modules are dialogs over `window`, those of
/// other threads once the event loop gets there. A text already shown is not
/// shown again while a dialog stands.
class MessageDialogs {
  public:
    explicit MessageDialogs(QWidget& window);
    ~MessageDialogs();
    MessageDialogs(const MessageDialogs&) = delete;
    MessageDialogs& operator=(const MessageDialogs&) = delete;
};

}  // namespace tavora::studio
