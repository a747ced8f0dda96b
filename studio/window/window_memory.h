#pragma once

#include <QMainWindow>
#include <QString>

namespace tavora::studio {

/// Stores the geometry and colours of the edit window in the file "window.ini" of the settings
/// folder. Without such a folder nothing is stored; a damaged file counts as empty. GUI thread.
class WindowMemory {
  public:
    WindowMemory();

    /// Restores the window's geometry; false when none is stored.
    bool restore(QMainWindow& window) const;
    void store(const QMainWindow& window) const;

    /// "light", "dark", or empty for the desktop's colours.
    QString colors() const;
    void storeColors(const QString& colors) const;

  private:
    QString file_;  ///< empty: there is no folder
};

}  // namespace tavora::studio
