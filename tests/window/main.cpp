// The tests, or with --store-defaults FOLDER a process that stores defaults
// until somebody ends it.

#include <QApplication>
#include <cstring>
#include <gtest/gtest.h>

#include "tests/window/default_settings_loop.h"

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication::setStyle("fusion");
    const QApplication application(argc, argv);
    if (argc > 2 && std::strcmp(argv[1], "--store-defaults") == 0) {
        tavora::studio::testing::storeDefaultsForever(argv[2]);
    }
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
