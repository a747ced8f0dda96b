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

/// Opens, saves and closes scenes, with the dialogs for that, and writes unsaved work to a recovery
/// file. GUI thread.
class SceneFiles : public QObject {
    Q_OBJECT
  public:
    /// `window` is the parent of dialogs. `request` has the looks, lights and threads for all
    /// scenes. All must outlive this object.
    SceneFiles(QWidget& window, const EditRequest& request, Report& report);
    ~SceneFiles() override;

    /// Null when no scene is open.
    Session* session() const { return session_.get(); }

    /// Asks first what to do with unsaved work. False when the scene was not opened, because of the
    /// user's answer or an error, which is shown in a dialog.
    bool open(const std::filesystem::path& scene);
    /// The same when the program starts: throws what Document throws.
    void openFirst(const std::filesystem::path& scene);
    bool askAndOpen();
    /// Reads the open scene again and discards unsaved changes. No panel may be open.
    void reload();
    /// Asks what to do if another program changed the file, or it cannot be written. False when
    /// nothing was saved.
    bool save();
    bool askAndSaveAs();
    /// Asks what to do with unsaved work; false when the user cancels closing.
    bool mayClose();

    /// Writes the unsaved work at once, before the program ends.
    void writeRecoveryNow();

    /// Fills a menu with the recently opened scenes.
    void listRecent(QMenu& menu);

  signals:
    /// session() has changed; the previous one exists until the slots have returned.
    void sessionChanged();
    /// The user chose a scene from the menu.
    void recentChosen(const std::filesystem::path& scene);
    /// The user wants to reload the file.
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
