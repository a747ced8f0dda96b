#pragma once

#include <QImage>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "studio/window/edit_window.h"
#include "tests/files/temporary_folder.h"
#include "tests/panels/settings_rig.h"

namespace tavora::studio::testing {

/// The edit window with a scene of two surfaces, "Body" and "Glass.Pane", in a
/// folder that is also the user's home.
class WindowTest : public ::testing::Test {
  protected:
    WindowTest();
    ~WindowTest() override;

    /// Gives the scene two animations: "Slide" moves Body and the light, which gets brighter,
    /// from 0.25 to 1.25 seconds, "Hide" shrinks the pane from 0 to 0.5.
    void animate();
    void start();
    /// As when the program is killed: nothing is asked, nothing saved.
    void kill() { window_.reset(); }

    EditWindow& window() { return *window_; }
    Document& document() { return window_->session()->document(); }
    PictureView& view() { return *window_->findChild<PictureView*>("picture"); }
    SurfaceList& surfaces() { return *window_->findChild<SurfaceList*>("surfaces"); }
    SurfaceShaders state();
    bool isModified() { return document().settings.isModified(); }
    TimeBar& timeBar() { return *window_->findChild<TimeBar*>("timeBar"); }
    /// As the user does, in the list of what plays.
    void choosePlaying(int row);
    QAction& action(const char* name) { return *window_->findChild<QAction*>(name); }
    void check(int surface, bool on);  ///< its box in the list

    QImage picture();
    /// Opens the panel of the current surface and runs the steps in it, each in
    /// the panel that is shown by then; closes it as by Cancel if the last one
    /// left it open.
    void inPanel(const std::vector<std::function<void(QWidget& panel)>>& steps);
    void answer(std::vector<int> buttons) { answers_ = std::move(buttons); }

    TemporaryFolder folder_;
    std::filesystem::path scene_ = folder_ / "scene.gltf";
    EditRequest request_;
    Report report_{ReportOptions{0, true, {}}};
    std::unique_ptr<EditWindow> window_;
    QTimer answering_;
    std::vector<int> answers_;
    int asDefault_ = 0;  ///< the button that Return would have pressed
};

}  // namespace tavora::studio::testing
