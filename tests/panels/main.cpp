// The tests, or with --pictures FOLDER [dark] every page of the settings panel
// and the panel "About" as pictures.

#include <QApplication>
#include <QStyle>
#include <QTemporaryDir>
#include <cstring>
#include <gtest/gtest.h>

#include "tests/panels/settings_rig.h"

namespace {

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
    rig.draw([&](QWidget& panel) {
        for (int page = 0; page < 6; ++page) {
            tavora::studio::selectTab(panel, page);
            panel.grab().save(QStringLiteral("%1/page-%2.png").arg(folder).arg(page + 1));
        }
    });
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
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
