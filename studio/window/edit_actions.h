#pragma once

#include <QAction>

class QMainWindow;
class QMenu;

namespace tavora::studio {

class LookMenu;

/// What can be done in the edit window, with its keys, menus and tool bar. The
/// actions belong to the window; who connects them does them. GUI thread.
struct EditActions {
    /// Makes them and the menus of `window`.
    explicit EditActions(QMainWindow& window);

    QAction* open;
    QAction* save;
    QAction* saveAs;
    QAction* quit;
    QMenu* recent;

    QAction* undo;
    QAction* redo;
    QAction* options;
    QAction* selectAll;
    QAction* copy;
    QAction* paste;

    LookMenu* looks;
    QAction* applyLook;
    QAction* saveLook;

    QAction* resetView;
    QAction* frameAll;
    QAction* compare;  ///< held, not toggled

    QAction* play;  ///< checked while it plays
    QAction* frameBack;
    QAction* frameOn;

    QAction* keys;
    QAction* documentation;
    QAction* about;

    /// Those that need a scene.
    void setSceneOpen(bool open);
};

}  // namespace tavora::studio
