#include "studio/window/scene_files.h"

#include <QApplication>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>

#include "studio/edit/recent_files.h"
#include "studio/services/messages.h"
#include "studio/window/dialogs.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;

/// The time after a change, in milliseconds, until the unsaved work is written.
constexpr int kRecoveryDelay = 1000;

QString text(const fs::path& path) {
    return QString::fromStdString(path.string());
}

fs::path path(const QString& text) {
    return text.toStdString();
}

void show(const std::vector<std::string>& warnings) {
    for (const std::string& warning : warnings)
        sendMessage(MessageKind::Warning, warning);
}

/// Shows the wait cursor, since reading and writing large scenes takes time.
class WaitCursor {
  public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

}  // namespace

SceneFiles::SceneFiles(QWidget& window, const EditRequest& request, Report& report)
    : window_(window), request_(request), report_(report) {
    recovery_.setSingleShot(true);
    recovery_.setInterval(kRecoveryDelay);
    connect(&recovery_, &QTimer::timeout, this, &SceneFiles::writeRecovery);
}

SceneFiles::~SceneFiles() = default;

bool SceneFiles::open(const fs::path& scene) {
    if (!mayClose()) return false;
    const bool read = guarded(&window_, [&] { load(scene); });
    if (read) offerRecovery();
    return read;
}

void SceneFiles::openFirst(const fs::path& scene) {
    first_ = scene;
    load(scene);
    // Later, so that the window is shown behind the question.
    QTimer::singleShot(0, this, &SceneFiles::offerRecovery);
}

void SceneFiles::load(const fs::path& scene) {
    const WaitCursor cursor;
    EditRequest request = request_;
    if (scene != first_) request.animation = {};  // the request's animations are for that scene
    request.scene = scene.string();
    auto session = std::make_unique<Session>(request, report_);
    addRecentFile(session->document().file.path());
    if (session_ != nullptr) session_->document().recovery.clear();
    replaceSession(std::move(session));
}

bool SceneFiles::askAndOpen() {
    const QString folder =
        session_ == nullptr ? QString() : text(session_->document().file.path().parent_path());
    const QString chosen = QFileDialog::getOpenFileName(&window_, tr("Open Scene"), folder,
                                                        tr("glTF scenes (*.gltf *.glb *.vrm)"));
    return !chosen.isEmpty() && open(path(chosen));
}

void SceneFiles::reload() {
    guarded(&window_, [this] { load(session_->document().file.path()); });
}

bool SceneFiles::save() {
    Document& document = session_->document();
    if (document.file.changedOnDisk()) return saveChanged();
    return saveWith([&] { return document.save(); });
}

bool SceneFiles::askAndSaveAs() {
    Document& document = session_->document();
    const QString suffix = text(document.file.path().extension());
    QString chosen =
        QFileDialog::getSaveFileName(&window_, tr("Save Scene As"), text(document.file.path()),
                                     tr("glTF scenes (*%1)").arg(suffix));
    if (chosen.isEmpty()) return false;
    if (!chosen.endsWith(suffix)) chosen += suffix;
    if (!saveWith([&] { return document.saveAs(path(chosen)); })) return false;
    addRecentFile(document.file.path());
    return true;
}

bool SceneFiles::mayClose() {
    if (session_ == nullptr) return true;
    Document& document = session_->document();
    if (document.settings.isModified()) {
        const auto answer = QMessageBox::question(
            &window_, tr("Tavora"),
            tr("Save the changes to %1?").arg(text(document.file.path().filename())),
            QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
        if (answer == QMessageBox::Cancel) return false;
        if (answer == QMessageBox::Save && !save()) return false;
    }
    recovery_.stop();
    return guarded(&window_, [&] { document.recovery.clear(); });
}

void SceneFiles::writeRecoveryNow() {
    if (session_ != nullptr) session_->document().recovery.write();
}

void SceneFiles::listRecent(QMenu& menu) {
    menu.clear();
    for (const fs::path& scene : recentFiles()) {
        QAction* action = menu.addAction(text(scene.filename()).replace('&', "&&"));
        action->setToolTip(text(scene));
        connect(action, &QAction::triggered, this, [this, scene] { emit recentChosen(scene); });
    }
    menu.setToolTipsVisible(true);
    menu.setEnabled(!menu.isEmpty());
}

void SceneFiles::replaceSession(std::unique_ptr<Session> session) {
    connect(session.get(), &Session::stateChanged, this, [this] { recovery_.start(); });
    recoveryFailed_ = false;
    std::swap(session_, session);
    emit sessionChanged();
}

void SceneFiles::offerRecovery() {
    Document& document = session_->document();
    if (!document.recovery.isOffered()) return;
    const int answer = askAboutRecovery(text(document.file.path().filename()));
    guarded(&window_, [&] {
        if (answer == QMessageBox::Yes) {
            show(document.recovery.takeOver());
        } else if (answer == QMessageBox::Discard) {
            document.recovery.discard();
        }
    });
}

/// Closing the question counts as "Later": the work is offered again.
int SceneFiles::askAboutRecovery(const QString& scene) {
    QMessageBox question(QMessageBox::Question, tr("Tavora"),
                         tr("Tavora ended with unsaved changes to %1. Bring them back?").arg(scene),
                         QMessageBox::Yes | QMessageBox::Discard | QMessageBox::Cancel, &window_);
    question.setInformativeText(tr("The file itself stays as it is until you save."));
    question.button(QMessageBox::Yes)->setText(tr("&Bring Back"));
    question.button(QMessageBox::Cancel)->setText(tr("&Later"));
    question.setDefaultButton(QMessageBox::Yes);
    return question.exec();
}

/// An error, for example of a full disk, is reported once and not after every change.
void SceneFiles::writeRecovery() {
    try {
        session_->document().recovery.write();
        recoveryFailed_ = false;
    } catch (const std::exception& error) {
        if (!std::exchange(recoveryFailed_, true)) {
            showError(
                &window_,
                tr("Unsaved work cannot be kept safe: %1").arg(QString::fromUtf8(error.what())));
        }
    }
}

bool SceneFiles::saveWith(const std::function<std::vector<std::string>()>& write) {
    std::vector<std::string> warnings;
    try {
        const WaitCursor cursor;
        warnings = write();
    } catch (const std::exception& error) {
        return offerSaveAs(QString::fromUtf8(error.what()));
    }
    emit saved(session_->document().file.path());
    show(warnings);
    return true;
}

/// Shows the error of a save and offers to save to another file, if the scene's file still exists,
/// since it is needed for that.
bool SceneFiles::offerSaveAs(const QString& error) {
    std::error_code ignored;
    if (!fs::exists(session_->document().file.path(), ignored))
        return showError(&window_, error), false;
    QMessageBox question(QMessageBox::Critical, tr("Tavora"), error,
                         QMessageBox::Save | QMessageBox::Cancel, &window_);
    question.setTextFormat(Qt::PlainText);
    question.setInformativeText(tr("Your changes are still in the window."));
    question.button(QMessageBox::Save)->setText(tr("Save &As…"));
    question.setDefaultButton(QMessageBox::Save);
    return question.exec() == QMessageBox::Save && askAndSaveAs();
}

/// Asks how to save to a file that another program changed.
bool SceneFiles::saveChanged() {
    Document& document = session_->document();
    QMessageBox question(
        QMessageBox::Warning, tr("Tavora"),
        tr("%1 was changed by another program since it was opened.")
            .arg(text(document.file.path())),
        QMessageBox::Save | QMessageBox::Reset | QMessageBox::Discard | QMessageBox::Cancel,
        &window_);
    question.setTextFormat(Qt::PlainText);
    question.setInformativeText(
        tr("Save As keeps both. Reload shows what the file holds now and gives up the changes in "
           "this window. Save Over It puts this window's settings into the changed file."));
    question.button(QMessageBox::Save)->setText(tr("Save &As…"));
    question.button(QMessageBox::Reset)->setText(tr("&Reload"));
    question.button(QMessageBox::Discard)->setText(tr("Save &Over It"));
    question.setDefaultButton(QMessageBox::Save);
    switch (question.exec()) {
        case QMessageBox::Save:
            return askAndSaveAs();
        case QMessageBox::Discard:
            return saveWith([&] { return document.save(true); });
        case QMessageBox::Reset:
            emit reloadChosen();
            return false;
        default:
            return false;
    }
}

}  // namespace tavora::studio
