#pragma once

#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>
#include <optional>

#include "studio/app/requests.h"
#include "studio/window/dialogs.h"
#include "studio/window/edit_actions.h"
#include "studio/window/gestures.h"
#include "studio/window/light_table.h"
#include "studio/window/panel_session.h"
#include "studio/window/picture_view.h"
#include "studio/window/scene_files.h"
#include "studio/window/surface_list.h"
#include "studio/window/time_bar.h"
#include "studio/window/window_keys.h"

namespace tavora::studio {

/// The edit window: the live picture, the lists of surfaces and lights, and the actions on them.
/// GUI thread; at most one in a process.
class EditWindow : public QMainWindow {
    Q_OBJECT
  public:
    /// Both must outlive it. Opens no scene yet.
    EditWindow(const EditRequest& request, Report& report);
    ~EditWindow() override;

    /// See SceneFiles.
    bool open(const std::filesystem::path& scene) { return files_.open(scene); }
    void openFirst(const std::filesystem::path& scene) { files_.openFirst(scene); }
    void writeRecoveryNow() { files_.writeRecoveryNow(); }

    PanelSession& panel() { return panel_; }
    Session* session() const { return files_.session(); }

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    QWidget* makePicture();
    QWidget* makeSide();
    void makeStatus();
    void connectFiles();
    void connectEditing();
    void connectView();

    void showSession();
    void showState();
    void showProgress();
    void say(const QString& text);
    void withoutPanel(const std::function<void()>& work);
    void openPanel(std::size_t surface);
    void undo();
    void redo();
    void copy();
    void paste();
    void applyLook(const std::string& look);
    void askAndApplyLook();
    void askAndSaveLook();

    const EditRequest& request_;
    Gestures gestures_;
    WindowKeys keys_;
    EditActions actions_;
    PictureView view_;
    TimeBar time_;
    SurfaceList surfaces_;
    LightTable lights_;
    QProgressBar progress_;
    QLabel notice_;
    SceneFiles files_;
    MessageDialogs messages_;
    PanelSession panel_;
    bool resumesPlaying_ = false;                         ///< when the looks' menu closes
    std::optional<std::optional<SurfaceShader>> copied_;  ///< inner one empty: no shader
};

}  // namespace tavora::studio
