#pragma once

#include <QImage>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "studio/window/edit_window.h"
#include "tests/files/temporary_folder.h"

namespace tavora::studio::testing {

/// The edit window with a scene of two surfaces, "Body" and "Glass.Pane", in a
/// folder that is also the user's home.
class WindowTest : public ::testing::Test {
  protected:
    WindowTest();
    ~WindowTest() override;
    void TearDown() override;

    /// A window as a start of the program gives it.
    void start();
    /// As when the program is killed: nothing is asked, nothing saved.
    void kill() { window_.reset(); }

    EditWindow& window() { return *window_; }
    Document& document() { return window_->session()->document(); }
    PictureView& view() { return *window_->findChild<PictureView*>("picture"); }
    SurfaceList& surfaces() { return *window_->findChild<SurfaceList*>("surfaces"); }
    SurfaceShaders state();
    void trigger(const char* action);

    /// Waits for the clean picture.
    QImage picture();
    /// Opens the panel of the current surface and runs the steps in it, each in
    /// the panel that is shown by then; closes it as by Cancel if the last one
    /// left it open.
    void inPanel(const std::vector<std::function<void(QWidget& panel)>>& steps);
    /// Answers the next question or message with one of its buttons. The test
    /// fails when there is none until its end.
    void answer(int button);
    auto answered() {
        return [this] { return !answering_->isActive(); };
    }

    TemporaryFolder folder_;
    std::filesystem::path scene_ = folder_ / "scene.gltf";
    EditRequest request_;
    Report report_{ReportOptions{0, true, {}}};
    std::unique_ptr<EditWindow> window_;
    std::unique_ptr<QTimer> answering_;
    int asDefault_ = 0;  ///< the button that Return would have pressed
};

}  // namespace tavora::studio::testing
