#pragma once

#include <QObject>

class QKeyEvent;

namespace tavora::studio {

/// Keys that work in the window and in its panels alike: undo, redo, save and help, and
/// the one that is held to compare. Fields that are being typed in keep theirs.
/// GUI thread; one a process, after the application.
class WindowKeys : public QObject {
    Q_OBJECT
  public:
    WindowKeys();

  signals:
    void undo();
    void redo();
    void save();
    void help();
    /// Held, or let go.
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
