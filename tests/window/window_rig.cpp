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

void WindowTest::animate() {
    auto scene = nlohmann::json::parse(std::ifstream(scene_));
    std::vector<float> numbers;
    const auto values = [&](const char* type, const std::vector<float>& added) {
        const std::size_t width = type == std::string("SCALAR") ? 1 : std::stoul(type + 3);
        scene["bufferViews"].push_back({{"buffer", 1},
                                        {"byteOffset", numbers.size() * sizeof(float)},
                                        {"byteLength", added.size() * sizeof(float)}});
        numbers.insert(numbers.end(), added.begin(), added.end());
        scene["accessors"].push_back({{"bufferView", scene["bufferViews"].size() - 1},
                                      {"componentType", 5126},
                                      {"count", added.size() / width},
                                      {"type", type}});
        if (width == 1) {
            scene["accessors"].back()["min"] = {added.front()};
            scene["accessors"].back()["max"] = {added.back()};
        }
        return scene["accessors"].size() - 1;
    };
    const auto channel = [&](nlohmann::json& animation, int node, const char* path,
                             std::size_t times, std::size_t output) {
        animation["samplers"].push_back({{"input", times}, {"output", output}});
        animation["channels"].push_back({{"sampler", animation["samplers"].size() - 1},
                                         {"target", {{"node", node}, {"path", path}}}});
    };
    nlohmann::json slide{{"name", "Slide"}};
    const auto second = values("SCALAR", {0.25F, 1.25F});
    channel(slide, 0, "translation", second, values("VEC3", {0, 0, 0, 0.5F, 0.3F, 0}));
    channel(slide, 3, "rotation", second, values("VEC4", {0, 0, 0, 1, -0.6F, 0, 0, 0.8F}));
    channel(slide, 3, "pointer", second, values("SCALAR", {3, 9}));
    slide["channels"].back()["target"] = {
        {"path", "pointer"},
        {"extensions",
         {{"KHR_animation_pointer",
           {{"pointer", "/extensions/KHR_lights_punctual/lights/0/intensity"}}}}}};
    scene["extensionsUsed"].push_back("KHR_animation_pointer");
    nlohmann::json hide{{"name", "Hide"}};
    channel(hide, 1, "scale", values("SCALAR", {0, 0.5F}),
            values("VEC3", {1, 1, 1, 0.25F, 0.5F, 1}));
    scene["animations"] = {slide, hide};
    const QByteArray bytes(reinterpret_cast<const char*>(numbers.data()),
                           static_cast<qsizetype>(numbers.size() * sizeof(float)));
    scene["buffers"].push_back(
        {{"byteLength", bytes.size()},
         {"uri", "data:application/octet-stream;base64," + bytes.toBase64().toStdString()}});
    std::ofstream(scene_) << scene;
}

void WindowTest::choosePlaying(int row) {
    auto& choice = *timeBar().findChild<QComboBox*>("animations");
    choice.setCurrentIndex(row);
    emit choice.activated(row);
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
