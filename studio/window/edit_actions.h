#pragma once

#include <QAction>

class QMainWindow;
class QMenu;

namespace tavora::studio {

class LookMenu;

/// The actions of the edit window, with their keys, menus and tool bar. The window owns them; their
/// signals are connected elsewhere. GUI thread.
struct EditActions {
    /// Adds the actions, menus and tool bar to `window`.
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
    QAction* compare;  ///< active while it is held

    QAction* play;  ///< checked while animations play
    QAction* frameBack;
    QAction* frameOn;

    QAction* keys;
    QAction* documentation;
    QAction* about;

    /// Enables the actions that need a scene.
    void setSceneOpen(bool open);
};

}  // namespace tavora::studio
