#include "tests/window/window_rig.h"

#include <QAction>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <fstream>

#include <nlohmann/json.hpp>

#include "studio/services/directory_info.h"

namespace tavora::studio::testing {

WindowTest::WindowTest() {
    // With its sun low, so that the panes lie in the zone of shade.
    auto scene = nlohmann::json::parse(std::ifstream(TEST_SCENE));
    scene["nodes"][3]["rotation"] = {-0.64, 0.0, 0.0, 0.768};
    std::ofstream(scene_) << scene;
    ::setenv("XDG_STATE_HOME", (folder_ / "state").c_str(), 1);
    setSettingsFolder(folder_ / "settings");
    request_.shading.plugin = TAVORA_MODULE;
    request_.threads = 2;
    QObject::connect(&answering_, &QTimer::timeout, [this] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr || answers_.empty()) return;
        const auto button = static_cast<QMessageBox::StandardButton>(answers_.front());
        answers_.erase(answers_.begin());
        asDefault_ =
            box->defaultButton() == nullptr ? 0 : box->standardButton(box->defaultButton());
        QTest::mouseClick(box->button(button), Qt::LeftButton);
    });
    answering_.start(1);
}

WindowTest::~WindowTest() {
    EXPECT_TRUE(answers_.empty()) << "less was asked";
    window_.reset();
    setSettingsFolder({});
}

void WindowTest::start() {
    window_ = std::make_unique<EditWindow>(request_, report_);
    window_->resize(640, 360);
    window_->show();
    window_->openFirst(scene_);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window_.get()));
}

SurfaceShaders WindowTest::state() {
    SurfaceShaders all;
    for (const std::size_t surface : document().settings.surfaces())
        all.push_back(document().settings.at(surface));
    return all;
}

void WindowTest::check(int surface, bool on) {
    surfaces().item(surface)->setCheckState(on ? Qt::Checked : Qt::Unchecked);
}

QImage WindowTest::picture() {
    const auto clean = [this] {
        const auto frame = window_->session()->picture().latest();
        return window_->session()->refined() == 1 &&
               frame->rgba.data() == view().image().constBits();
    };
    EXPECT_TRUE(QTest::qWaitFor(clean, 30000)) << window_->session()->picture().failure();
    return view().image().copy();
}

void WindowTest::inPanel(const std::vector<std::function<void(QWidget& panel)>>& steps) {
    std::exception_ptr failed;
    std::size_t next = 0;
    bool busy = false;
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, [&] {
        // The first panel of all says that it stores the default settings.
        if (auto* message = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            return message->accept();
        }
        QWidget* panel = window_->panel().widget();
        if (busy || panel == nullptr) return;
        // The offscreen platform activates nothing when a message has gone.
        if (!panel->isActiveWindow()) return panel->activateWindow();
        if (failed || next == steps.size()) return static_cast<QDialog*>(panel)->reject();
        busy = true;
        try {
            steps[next++](*panel);
        } catch (...) {
            failed = std::current_exception();
        }
        busy = false;
    });
    user.start(1);
    action("options").trigger();
    if (failed) std::rethrow_exception(failed);
    EXPECT_EQ(next, steps.size()) << "the panel closed too early";
}

}  // namespace tavora::studio::testing
