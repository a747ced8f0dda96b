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

namespace {

/// The scene with its sun low, so that the panes lie in the zone of shade.
nlohmann::json sceneInShade() {
    auto scene = nlohmann::json::parse(std::ifstream(TEST_SCENE));
    for (nlohmann::json& node : scene["nodes"]) {
        if (node["name"] == "Sun") node["rotation"] = {-0.64, 0.0, 0.0, 0.768};
    }
    return scene;
}

}  // namespace

WindowTest::WindowTest() {
    std::ofstream(scene_) << sceneInShade();
    ::setenv("XDG_STATE_HOME", (folder_ / "state").c_str(), 1);
    setSettingsFolder(folder_ / "settings");
    request_.shading.plugin = TAVORA_MODULE;
    request_.threads = 2;
}

WindowTest::~WindowTest() {
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

void WindowTest::trigger(const char* action) {
    window_->findChild<QAction*>(action)->trigger();
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
    trigger("options");
    if (failed) std::rethrow_exception(failed);
    EXPECT_EQ(next, steps.size()) << "the panel closed too early";
}

void WindowTest::answer(int button) {
    answering_ = std::make_unique<QTimer>();
    QObject::connect(answering_.get(), &QTimer::timeout, [this, button] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr) return;
        answering_->stop();
        asDefault_ =
            box->defaultButton() == nullptr ? 0 : box->standardButton(box->defaultButton());
        QTest::mouseClick(box->button(static_cast<QMessageBox::StandardButton>(button)),
                          Qt::LeftButton);
    });
    answering_->start(1);
}

void WindowTest::TearDown() {
    EXPECT_TRUE(answering_ == nullptr || !answering_->isActive()) << "nothing was asked";
}

}  // namespace tavora::studio::testing
