#pragma once

#include <QMainWindow>
#include <QString>

namespace tavora::studio {

/// What the edit window keeps from one start to the next, in the file
/// "window.ini" of the settings folder; without a folder it keeps nothing, and a
/// damaged file counts as empty. GUI thread.
class WindowMemory {
  public:
    WindowMemory();

    /// Puts the window where it last was; false when that is not known.
    bool restore(QMainWindow& window) const;
    void keep(const QMainWindow& window) const;

    /// "light", "dark", or empty: as the desktop has it.
    QString colors() const;
    void keepColors(const QString& colors) const;

  private:
    QString file_;  ///< empty: there is no folder
};

}  // namespace tavora::studio
