#include "tests/panels/settings_rig.h"

#include <QApplication>
#include <QDialog>
#include <QMouseEvent>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <stdexcept>

#include "studio/services/instance_update.h"
#include "studio/services/messages.h"
#include "studio/services/registry.h"

namespace tavora::studio::testing {
SettingsRig::SettingsRig() {
    scene_.surfaces.resize(1);
    for (const char* name : {"Key", "Fill", "Rim"}) {
        auto light = std::make_unique<Light>();
        light->name = name;
        lights_.lights.push_back({light.get(), Imath::V3d(1), 1});
        lights_.own.push_back(std::move(light));
    }
    index_ = std::make_unique<SceneIndex>(scene_);
    binding_ = std::make_unique<ServiceBinding>(*index_, lights_);
    setMessageSink([](MessageKind, const std::string&) {});
    module_ = std::make_unique<ModuleCopy>(TAVORA_MODULE, findServiceOrWindow);
    shader_ = std::make_unique<Shader>(*module_, index_->surfaceId(0));
    setInstanceListener([this](const char*, HostInstance) { ++updates; });
}

SettingsRig::~SettingsRig() {
    setInstanceListener({});
    setMessageSink({});
}

void SettingsRig::openOptions() {
    const HostShaderInterface shown = module_->activateInterface(shader_->instance());
    if (const HostError error = shown.options(shader_->instance())) throw std::runtime_error(error);
}

bool SettingsRig::open(const std::function<void(QWidget& panel)>& user) {
    bool confirmed = false;
    bool begun = false;
    std::exception_ptr failed;
    std::unique_ptr<Panels> panels;
    PanelHooks hooks;
    hooks.opened = [&](QWidget& panel) {
        if (std::exchange(begun, true)) return;  // a panel on top
        QTimer::singleShot(0, &panel, [&] {
            try {
                if (!QTest::qWaitForWindowActive(&panel)) throw std::runtime_error("not active");
                user(panel);
            } catch (...) {
                failed = std::current_exception();
            }
            panels->close(false);
        });
    };
    hooks.closed = [&](QWidget& panel) {
        confirmed = static_cast<QDialog&>(panel).result() == QDialog::Accepted;
    };
    panels = std::make_unique<Panels>(nullptr, hooks);
    openOptions();
    if (failed) std::rethrow_exception(failed);
    return confirmed;
}

void SettingsRig::draw(const std::function<void(QWidget& panel)>& look) {
    PanelHooks hooks;
    hooks.insteadOfShowing = look;
    const Panels panels(nullptr, hooks);
    openOptions();
}

void SettingsRig::apply(const char* changesAsJson) {
    Settings changed = settings();
    applySettings(changed, nlohmann::ordered_json::parse(changesAsJson), "test");
    shader_->load(blockOf(changed));
}

void click(QWidget& widget) {
    QTest::mouseClick(&widget, Qt::LeftButton);
}

void clickAt(QWidget& widget, int x) {
    QTest::mouseClick(&widget, Qt::LeftButton, {}, QPoint(x, widget.height() / 2));
}

void type(const QWidget& panel, const char* field, const char* text) {
    auto& widget = find(panel, field);
    click(widget);
    QTest::keyClicks(&widget, QString::fromUtf8(text));
    QTest::keyClick(&widget, Qt::Key_Return);
}

void drag(QWidget& widget, int distance, Qt::KeyboardModifiers keys) {
    const QPoint start = widget.rect().center();
    constexpr int moves = 8;
    QTest::mousePress(&widget, Qt::LeftButton, keys, start);
    for (int move = 1; move <= moves; ++move) {
        const QPointF place = start + QPoint(distance * move / moves, 0);
        QMouseEvent moved(QEvent::MouseMove, place, widget.mapToGlobal(place), Qt::NoButton,
                          Qt::LeftButton, keys);
        QApplication::sendEvent(&widget, &moved);
    }
    QTest::mouseRelease(&widget, Qt::LeftButton, keys, start + QPoint(distance, 0));
}

void selectPage(QWidget& panel, int page) {
    auto& tabs = find<QTabBar>(panel, "tab");
    QTest::mouseClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(page).center());
}

void whenPicking(std::function<void(QColorDialog& dialog)> user) {
    QTimer::singleShot(0, qApp, [user = std::move(user)] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) throw std::runtime_error("no colour picker came up");
        user(*dialog);
    });
}

}  // namespace tavora::studio::testing
