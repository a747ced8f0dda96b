#pragma once

#include <QObject>

class QKeyEvent;

namespace tavora::studio {

/// Keys that work both in the window and in its panels: undo, redo, save, help, and the key that is
/// held to compare. Text fields handle undo themselves while there is typing to undo. GUI thread;
/// one in a process, made after the application.
class WindowKeys : public QObject {
    Q_OBJECT
  public:
    WindowKeys();

  signals:
    void undo();
    void redo();
    void save();
    void help();
    /// The key was pressed or released.
    void compare(bool held);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    using Action = void (WindowKeys::*)();
    static Action actionOf(const QKeyEvent& key);
    bool press(const QKeyEvent& key);
    bool release(const QKeyEvent& key);

    bool comparing_ = false;
};

}  // namespace tavora::studio
