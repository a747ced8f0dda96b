#include "studio/window/edit_actions.h"

#include <QMainWindow>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>

#include "studio/window/color_menu.h"
#include "studio/window/look_menu.h"

namespace tavora::studio {
namespace {

QAction* make(QMainWindow& window, const char* name, const QString& text, const QKeySequence& keys,
              const QString& tip) {
    auto* action = new QAction(text, &window);
    action->setObjectName(name);
    action->setShortcut(keys);
    const QString shown = keys.toString(QKeySequence::NativeText);
    action->setToolTip(shown.isEmpty() ? tip : QString("%1 (%2)").arg(tip, shown));
    action->setStatusTip(tip);
    action->setIconText(QString(text).remove('&'));  // does not change with the text
    window.addAction(action);
    return action;
}

}  // namespace

EditActions::EditActions(QMainWindow& window) {
    const auto tr = [](const char* text) { return QObject::tr(text); };
    open = make(window, "open", tr("&Open…"), QKeySequence::Open, tr("Open a glTF scene"));
    save = make(window, "save", tr("&Save"), QKeySequence::Save,
                tr("Save the settings in the scene's file"));
    saveAs = make(window, "saveAs", tr("Save &As…"), QKeySequence("Ctrl+Shift+S"),
                  tr("Save the scene with its settings under another name"));
    quit = make(window, "quit", tr("&Quit"), QKeySequence("Ctrl+Q"), tr("Leave Tavora"));
    undo = make(window, "undo", tr("&Undo"), QKeySequence::Undo, tr("Take the last step back"));
    redo = make(window, "redo", tr("&Redo"), QKeySequence("Ctrl+Shift+Z"),
                tr("Do again what was undone"));
    options = make(window, "options", tr("&Options…"), QKeySequence("Ctrl+Return"),
                   tr("Open the shader's panel for the selected surface"));
    selectAll = make(window, "selectAll", tr("Select &All"), QKeySequence::SelectAll,
                     tr("Select all surfaces"));
    copy = make(window, "copy", tr("&Copy Settings"), QKeySequence::Copy,
                tr("Copy the settings of the selected surface"));
    paste = make(window, "paste", tr("&Paste Settings"), QKeySequence::Paste,
                 tr("Put the copied settings on all selected surfaces"));
    applyLook = make(window, "applyLook", tr("&Apply Look…"), QKeySequence("Ctrl+L"),
                     tr("Put a look from a file on the selected surfaces"));
    saveLook = make(window, "saveLook", tr("Save &Look…"), QKeySequence("Ctrl+Shift+L"),
                    tr("Save the settings of the selected surface as a look"));
    resetView = make(window, "resetView", tr("&Camera View"), QKeySequence("Home"),
                     tr("Back to the scene's camera"));
    frameAll = make(window, "frameAll", tr("&Frame All"), QKeySequence("F"),
                    tr("Turn to the whole scene"));
    compare = make(window, "compare", tr("Compare with &Saved"), QKeySequence("C"),
                   tr("Hold to see the picture as it was saved"));
    // WindowKeys handles this key: an action cannot tell press and release.
    compare->setShortcutContext(Qt::WidgetShortcut);

    play = make(window, "playPause", tr("&Play"), QKeySequence("P"),
                tr("Play the chosen animations, or pause"));
    play->setCheckable(true);
    frameBack = make(window, "frameBack", tr("Frame &Back"), QKeySequence(","),
                     tr("One frame back, the last one after the first"));
    frameOn = make(window, "frameOn", tr("Frame &On"), QKeySequence("."),
                   tr("One frame on, the first one after the last"));

    keys = make(window, "keys", tr("&Keys and Mouse"), QKeySequence::HelpContents,
                tr("What the keys and the mouse do"));
    documentation = make(window, "documentation", tr("&Documentation"), {},
                         tr("Open the documentation in the desktop's viewer"));
    about = make(window, "about", tr("&About Tavora"), {}, tr("The version of this program"));

    QMenu* file = window.menuBar()->addMenu(tr("&File"));
    file->addAction(open);
    recent = file->addMenu(tr("Open &Recent"));
    file->addSeparator();
    file->addActions({save, saveAs});
    file->addSeparator();
    file->addAction(quit);

    QMenu* edit = window.menuBar()->addMenu(tr("&Edit"));
    edit->addActions({undo, redo});
    edit->addSeparator();
    edit->addActions({options, selectAll, copy, paste});

    looks = new LookMenu(&window);
    window.menuBar()->addMenu(looks);
    looks->addActions({applyLook, saveLook});

    QMenu* view = window.menuBar()->addMenu(tr("&View"));
    view->addActions({resetView, frameAll, compare});
    view->addSeparator();
    view->addActions({play, frameBack, frameOn});
    view->addSeparator();
    view->addMenu(new ColorMenu(view));

    QMenu* help = window.menuBar()->addMenu(tr("&Help"));
    help->addActions({keys, documentation});
    help->addSeparator();
    help->addAction(about);

    QToolBar* bar = window.addToolBar(tr("Tools"));
    bar->setObjectName("tools");
    bar->setMovable(false);
    bar->addActions({open, save});
    bar->addSeparator();
    bar->addActions({undo, redo});
    bar->addSeparator();
    bar->addAction(options);
    bar->addAction(looks->menuAction());
    static_cast<QToolButton*>(bar->widgetForAction(looks->menuAction()))
        ->setPopupMode(QToolButton::InstantPopup);
    bar->addSeparator();
    bar->addActions({resetView, compare});
    setSceneOpen(false);
}

void EditActions::setSceneOpen(bool sceneOpen) {
    for (QAction* action : {save, saveAs, undo, redo, options, selectAll, copy, paste, applyLook,
                            saveLook, resetView, frameAll, compare}) {
        action->setEnabled(sceneOpen);
    }
}

}  // namespace tavora::studio
