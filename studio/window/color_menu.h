#pragma once

#include <QMenu>

#include "studio/window/window_memory.h"

namespace tavora::studio {

/// Chooses the colours of the program's windows: the desktop's, light or dark. The constructor
/// applies the last choice; a new choice is stored. GUI thread.
class ColorMenu : public QMenu {
    Q_OBJECT
  public:
    explicit ColorMenu(QWidget* parent);

  private:
    void add(const QString& text, const QString& colors);

    WindowMemory memory_;
};

}  // namespace tavora::studio
