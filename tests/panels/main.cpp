// The tests, or with --pictures FOLDER [dark] pictures of every page of the
// settings panel, of focus, and of the dialogs it opens.

#include <QApplication>
#include <QPushButton>
#include <QStyle>
#include <QTemporaryDir>
#include <cstring>
#include <gtest/gtest.h>

#include "tests/panels/settings_rig.h"

namespace {

using tavora::studio::testing::find;
using tavora::studio::testing::SettingsRig;

QPalette dark() {
    QPalette colors(QColor(0x36, 0x39, 0x3e), QColor(0x2a, 0x2c, 0x30));
    colors.setColor(QPalette::Base, QColor(0x1e, 0x20, 0x23));
    colors.setColor(QPalette::Highlight, QColor(0x3d, 0x7e, 0xd8));
    return colors;
}

void takePictures(const QString& folder) {
    SettingsRig rig;
    rig.apply(R"({"highlightEnable": "On", "lightList": ["Key", "Rim"], "useAllLights": false,
                  "slopeEnable": true, "slopeTopColor": "#88aaff", "highlightColor": "#ffffee"})");
    const auto save = [&](QWidget& panel, const QString& name) {
        panel.grab().save(QStringLiteral("%1/%2.png").arg(folder, name));
    };
    rig.draw([&](QWidget& panel) {
        if (panel.windowTitle() == "About") return save(panel, "about");
        for (int page = 0; page < 6; ++page) {
            tavora::studio::selectTab(panel, page);
            save(panel, QStringLiteral("page-%1").arg(page + 1));
        }
        find<QPushButton>(panel, "About.button").click();
    });
    rig.open([&](QWidget& panel) {
        for (const char* name : {"area.6", "area.7", "Position.percent", "Shift.drag", "choice"}) {
            QWidget& widget = find(panel, name);
            auto* part = widget.findChild<QPushButton*>();
            (part != nullptr ? part : &widget)->setFocus();
            save(panel, QStringLiteral("focus-%1").arg(name));
        }
        tavora::studio::testing::whenPicking([&](QColorDialog& dialog) {
            save(dialog, "picker");
            dialog.reject();
        });
        tavora::studio::testing::clickAt(find(panel, "area.6"), 150);
    });
}

}  // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir settings;
    qputenv("TAVORA_DEFAULTS", settings.path().toUtf8());
    QApplication::setStyle("fusion");
    const QApplication application(argc, argv);
    if (argc > 2 && std::strcmp(argv[1], "--pictures") == 0) {
        if (argc > 3) QApplication::setPalette(dark());
        takePictures(QString::fromUtf8(argv[2]));
        return 0;
    }
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
