#include "studio/window/edit_window.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QMimeData>
#include <QPushButton>
#include <QSplitter>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <utility>

#include "studio/edit/undo_steps.h"
#include "studio/scene/settings/look_writing.h"
#include "studio/window/help.h"
#include "studio/window/look_menu.h"
#include "studio/window/window_memory.h"

namespace tavora::studio {
namespace {

constexpr int kSideWidth = 240;  // pixels; leaves space for the panel on a screen 800 pixels wide
constexpr int kMargin = 6;
constexpr int kMessageTime = 8000;  // milliseconds

std::string droppedFile(const QMimeData& data) {
    if (!data.hasUrls() || !data.urls().front().isLocalFile()) return {};
    const QString file = data.urls().front().toLocalFile();
    const QString suffix = file.section('.', -1).toLower();
    return suffix == "glb" || suffix == "gltf" || suffix == "json" ? file.toStdString()
                                                                   : std::string();
}

bool isLook(const std::string& file) {
    return file.ends_with(".json");
}

QWidget* titled(const QString& title, QWidget& content) {
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(title);
    label->setBuddy(&content);
    layout->addWidget(label);
    layout->addWidget(&content);
    return box;
}

}  // namespace

EditWindow::EditWindow(const EditRequest& request, Report& report)
    : request_(request),
      actions_(*this),
      view_(this),
      time_(actions_, this),
      surfaces_(this),
      lights_(this),
      files_(*this, request_, report),
      messages_(*this),
      panel_(*this, surfaces_, gestures_) {
    auto* splitter = new QSplitter(this);
    splitter->setObjectName("picture-side");
    splitter->addWidget(makePicture());
    splitter->addWidget(makeSide());
    splitter->setStretchFactor(0, 1);
    splitter->setSizes({view_.sizeHint().width(), kSideWidth});
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);
    makeStatus();
    setAcceptDrops(true);
    connectFiles();
    connectEditing();
    connectView();
    showSession();
}

EditWindow::~EditWindow() {
    actions_.looks->show(nullptr);
    view_.show(nullptr);
    time_.show(nullptr);
    surfaces_.show(nullptr);
}

QWidget* EditWindow::makePicture() {
    auto* column = new QWidget;
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(&view_, 1);
    layout->addWidget(&time_);
    return column;
}

QWidget* EditWindow::makeSide() {
    auto* side = new QSplitter(Qt::Vertical);
    side->setObjectName("surfaces-lights");
    auto* top = new QWidget;
    auto* layout = new QVBoxLayout(top);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(titled(tr("S&urfaces"), surfaces_));
    auto* options = new QPushButton(tr("Options…"));
    options->setObjectName("optionsButton");
    options->setToolTip(actions_.options->toolTip());
    connect(options, &QPushButton::clicked, actions_.options, &QAction::trigger);
    connect(actions_.options, &QAction::changed, options,
            [this, options] { options->setEnabled(actions_.options->isEnabled()); });
    options->setEnabled(false);
    layout->addWidget(options);
    side->addWidget(top);
    side->addWidget(titled(tr("Li&ghts"), lights_));
    side->setStretchFactor(0, 3);
    side->setStretchFactor(1, 1);
    side->setMinimumWidth(kSideWidth);
    side->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    side->setChildrenCollapsible(false);
    return side;
}

void EditWindow::makeStatus() {
    progress_.setObjectName("progress");
    progress_.setAccessibleName(tr("How clean the picture is"));
    progress_.setMaximum(100);
    progress_.setMaximumWidth(160);
    progress_.setMaximumHeight(14);
    progress_.setTextVisible(false);
    statusBar()->addPermanentWidget(&notice_);
    statusBar()->addPermanentWidget(&progress_);
}

void EditWindow::connectFiles() {
    connect(&files_, &SceneFiles::sessionChanged, this, &EditWindow::showSession);
    connect(&files_, &SceneFiles::recentChosen, this,
            [this](const auto& scene) { withoutPanel([=, this] { open(scene); }); });
    connect(&files_, &SceneFiles::reloadChosen, this,
            [this] { withoutPanel([this] { files_.reload(); }); });
    connect(&files_, &SceneFiles::saved, this,
            [this](const auto& scene) { say(tr("Saved %1").arg(scene.c_str())); });
    connect(actions_.recent, &QMenu::aboutToShow, this,
            [this] { files_.listRecent(*actions_.recent); });
    connect(actions_.open, &QAction::triggered, this,
            [this] { withoutPanel([this] { files_.askAndOpen(); }); });
    connect(actions_.save, &QAction::triggered, this, [this] { files_.save(); });
    connect(actions_.saveAs, &QAction::triggered, this, [this] { files_.askAndSaveAs(); });
    connect(actions_.quit, &QAction::triggered, this, &QWidget::close);
}

void EditWindow::connectEditing() {
    connect(&keys_, &WindowKeys::undo, this, &EditWindow::undo);
    connect(&keys_, &WindowKeys::redo, this, &EditWindow::redo);
    connect(&keys_, &WindowKeys::save, actions_.save, &QAction::trigger);
    connect(&keys_, &WindowKeys::help, actions_.keys, &QAction::trigger);
    connect(actions_.keys, &QAction::triggered, this, [this] { showKeys(*this); });
    connect(actions_.documentation, &QAction::triggered, this,
            [this] { openDocumentation(*this); });
    connect(actions_.about, &QAction::triggered, this, [this] { showAbout(*this); });
    connect(actions_.selectAll, &QAction::triggered, &surfaces_, &QListWidget::selectAll);
    connect(actions_.undo, &QAction::triggered, this, &EditWindow::undo);
    connect(actions_.redo, &QAction::triggered, this, &EditWindow::redo);
    connect(actions_.copy, &QAction::triggered, this, &EditWindow::copy);
    connect(actions_.paste, &QAction::triggered, this, &EditWindow::paste);
    connect(actions_.looks, &LookMenu::chosen, this,
            [this](const QString& look) { applyLook(look.toStdString()); });
    actions_.looks->selection = [this] { return surfaces_.selection(); };
    connect(actions_.applyLook, &QAction::triggered, this, &EditWindow::askAndApplyLook);
    connect(actions_.saveLook, &QAction::triggered, this, &EditWindow::askAndSaveLook);
    connect(actions_.options, &QAction::triggered, this, [this] {
        if (const auto surface = surfaces_.current()) openPanel(*surface);
    });
    connect(&surfaces_, &SurfaceList::surfaceActivated, this, &EditWindow::openPanel);
    connect(&surfaces_, &SurfaceList::currentSurfaceChanged, this, [this] {
        const std::optional<std::size_t> surface = surfaces_.current();
        if (panel_.isOpen() && surface) openPanel(*surface);
    });
    connect(&panel_, &PanelSession::opened, this, [this](std::size_t surface) {
        surfaces_.select(surface);
        showState();
    });
    connect(&panel_, &PanelSession::closed, this, &EditWindow::showState);
}

void EditWindow::connectView() {
    connect(&view_, &PictureView::surfaceClicked, this, [this](std::ptrdiff_t surface) {
        if (surface >= 0) surfaces_.select(static_cast<std::size_t>(surface));
    });
    connect(&view_, &PictureView::surfaceDoubleClicked, this, &EditWindow::openPanel);
    connect(actions_.resetView, &QAction::triggered, this, [this] { session()->resetView(); });
    connect(actions_.frameAll, &QAction::triggered, this, [this] { session()->frameAll(); });
    // Playback pauses while the menu is open, since its pictures show the current frame.
    connect(actions_.looks, &QMenu::aboutToShow, this, [this] {
        resumesPlaying_ = time_.playback().isPlaying();
        time_.playback().setPlaying(false);
    });
    connect(actions_.looks, &QMenu::aboutToHide, this,
            [this] { time_.playback().setPlaying(std::exchange(resumesPlaying_, false)); });
    const auto compare = [this](bool held) {
        if (session() != nullptr) session()->compareWithSaved(held);
    };
    connect(&keys_, &WindowKeys::compare, this, compare);
    for (auto* button : findChildren<QToolButton*>()) {
        if (button->defaultAction() != actions_.compare) continue;
        connect(button, &QToolButton::pressed, this, [compare] { compare(true); });
        connect(button, &QToolButton::released, this, [compare] { compare(false); });
    }
}

void EditWindow::showSession() {
    Session* shown = session();
    view_.show(shown);
    time_.show(shown);
    surfaces_.show(shown);
    actions_.looks->show(shown);
    actions_.setSceneOpen(shown != nullptr);
    if (shown != nullptr) {
        lights_.show(*shown->lights());
        connect(shown, &Session::stateChanged, this, &EditWindow::showState);
        connect(shown, &Session::pictureChanged, this, &EditWindow::showProgress);
        connect(shown, &Session::viewChanged, this, &EditWindow::showState);
        connect(shown, &Session::lightsChanged, this,
                [this, shown] { lights_.show(*shown->lights()); });
    }
    showState();
    showProgress();
}

void EditWindow::showState() {
    Session* shown = session();
    if (shown == nullptr) {
        setWindowTitle("Tavora");
        return;
    }
    const Document& document = shown->document();
    setWindowFilePath(QString::fromStdString(document.file.path().string()));
    setWindowTitle(QString::fromStdString(document.file.path().filename().string()) + "[*]");
    setWindowModified(document.settings.isModified());
    actions_.undo->setEnabled(document.undo.canUndo());
    actions_.redo->setEnabled(document.undo.canRedo());
    actions_.undo->setText(tr("&Undo %1").arg(QString::fromStdString(document.undo.undoText())));
    actions_.redo->setText(tr("&Redo %1").arg(QString::fromStdString(document.undo.redoText())));
    actions_.paste->setEnabled(copied_.has_value());
    actions_.resetView->setEnabled(!shown->isViewAtStart());
    const QString asSaved = tr("As saved");
    if (shown->isComparing()) {
        statusBar()->showMessage(asSaved);
    } else if (statusBar()->currentMessage() == asSaved) {
        statusBar()->clearMessage();
    }
}

void EditWindow::say(const QString& text) {
    statusBar()->showMessage(text, kMessageTime);
}

void EditWindow::showProgress() {
    const Session* shown = session();
    const double refined = shown == nullptr ? 0 : shown->refined();
    progress_.setVisible(shown != nullptr && refined < 1 && !time_.playback().isPlaying());
    progress_.setValue(static_cast<int>(refined * 100));
    if (shown == nullptr) {
        notice_.setText(tr("Open a glTF scene, or drop one here"));
        return;
    }
    const std::string failure = shown->failure();
    const std::string text = failure.empty() ? shown->picture().stats().notice : failure;
    notice_.setText(QString::fromStdString(text));
}

/// Does `work`, which may replace the scene, after closing the panel, since that uses a record of
/// the scene.
void EditWindow::withoutPanel(const std::function<void()>& work) {
    panel_.finish([this, work] { guarded(this, work); });
}

void EditWindow::openPanel(std::size_t surface) {
    guarded(this, [&] { panel_.open(*session(), surface); });
}

void EditWindow::undo() {
    if (session() == nullptr || !session()->document().undo.canUndo()) return;
    panel_.interrupt([this] { session()->document().undo.undo(); });
}

void EditWindow::redo() {
    if (session() == nullptr || !session()->document().undo.canRedo()) return;
    panel_.interrupt([this] { session()->document().undo.redo(); });
}

void EditWindow::copy() {
    const std::optional<std::size_t> surface = surfaces_.current();
    if (!surface) return;
    copied_ = session()->document().settings.at(*surface);
    showState();
}

void EditWindow::paste() {
    if (!copied_) return;
    ShaderChanges changes;
    for (const std::size_t surface : surfaces_.selection())
        changes.emplace_back(surface, *copied_);
    panel_.interrupt([=, this] {
        Document& document = session()->document();
        document.undo.push(settingsStep(document.settings, changes, "Paste"));
    });
}

void EditWindow::applyLook(const std::string& look) {
    panel_.interrupt([=, this] {
        Document& document = session()->document();
        guarded(this, [&] {
            document.undo.push(lookStep(document.settings, look, surfaces_.selection()));
        });
    });
}

void EditWindow::askAndApplyLook() {
    const QString file =
        QFileDialog::getOpenFileName(this, tr("Apply Look"), {}, tr("Looks (*.json)"));
    if (!file.isEmpty()) applyLook(file.toStdString());
}

void EditWindow::askAndSaveLook() {
    const std::optional<std::size_t> surface = surfaces_.current();
    if (!surface) return;
    QString file =
        QFileDialog::getSaveFileName(this, tr("Save Look"), "look.json", tr("Looks (*.json)"));
    if (file.isEmpty()) return;
    if (!file.endsWith(".json")) file += ".json";
    guarded(this, [&] {
        const SceneSettings& settings = session()->document().settings;
        const auto& shader = settings.at(*surface);
        writeLook(shader.value_or(settings.newShader()).block, file.toStdString());
        say(tr("Saved %1").arg(file));
    });
}

void EditWindow::closeEvent(QCloseEvent* event) {
    if (panel_.isOpen()) {
        event->ignore();
        panel_.finish([this] { close(); });
    } else if (files_.mayClose()) {
        WindowMemory().store(*this);
        event->accept();
    } else {
        event->ignore();
    }
}

void EditWindow::dragEnterEvent(QDragEnterEvent* event) {
    const std::string file = droppedFile(*event->mimeData());
    if (!file.empty() && (session() != nullptr || !isLook(file))) event->acceptProposedAction();
}

void EditWindow::dropEvent(QDropEvent* event) {
    const std::string file = droppedFile(*event->mimeData());
    event->acceptProposedAction();
    if (isLook(file)) {
        applyLook(file);
    } else {
        withoutPanel([this, file] { open(file); });
    }
}

}  // namespace tavora::studio
