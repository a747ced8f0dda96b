#pragma once

#include <QObject>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "studio/app/requests.h"
#include "studio/setup/report.h"
#include "studio/window/session.h"

class QMenu;
class QWidget;

namespace tavora::studio {

/// Opens, saves and closes scenes with the questions and dialogs that go with
/// it; keeps unsaved work in a recovery file. GUI thread.
class SceneFiles : public QObject {
    Q_OBJECT
  public:
    /// `window` is the parent of dialogs. `request` says with what looks, lights
    /// and threads scenes open. All must outlive it.
    SceneFiles(QWidget& window, const EditRequest& request, Report& report);
    ~SceneFiles() override;

    /// Null when no scene is open.
    Session* session() const { return session_.get(); }

    /// Asks what becomes of unsaved work first. False when the user, or an error
    /// shown in a dialog, kept the scene that was open.
    bool open(const std::filesystem::path& scene);
    /// The same for a program that has just started: throws what Document throws.
    void openFirst(const std::filesystem::path& scene);
    bool askAndOpen();
    /// Reads the scene that is open again; what was not saved is gone. No panel
    /// may be open.
    void reload();
    /// Asks what to do where the file was changed by another program or cannot be
    /// written. False when nothing was saved.
    bool save();
    bool askAndSaveAs();
    /// Asks; false when the user wants to stay.
    bool mayClose();

    /// Brings unsaved work to the disk at once, for a program that must end.
    void keepSafe();

    /// Fills a menu with the scenes that were open lately.
    void listRecent(QMenu& menu);

  signals:
    /// session() is another one now; the one before lives until this returns.
    void sessionChanged();
    /// Somebody chose a scene of the menu.
    void recentChosen(const std::filesystem::path& scene);
    /// Somebody asked for what the file holds now.
    void reloadChosen();
    void saved(const std::filesystem::path& scene);

  private:
    void load(const std::filesystem::path& scene);
    void replaceSession(std::unique_ptr<Session> session);
    void offerRecovery();
    int askAboutRecovery(const QString& scene);
    void writeRecovery();
    bool saveWith(const std::function<std::vector<std::string>()>& write);
    bool saveChanged();
    bool offerSaveAs(const QString& error);

    QWidget& window_;
    const EditRequest& request_;
    Report& report_;
    std::filesystem::path first_;  ///< the scene that the program was started with
    std::unique_ptr<Session> session_;
    QTimer recovery_;
    bool recoveryFailed_ = false;
};

}  // namespace tavora::studio
