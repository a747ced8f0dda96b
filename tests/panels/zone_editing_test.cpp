// The gradient of zones, edited through the real panel.

#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "studio/panels/canvas.h"
#include "tests/panels/settings_rig.h"

namespace tavora::studio::testing {
namespace {

using ::testing::FloatNear;
using ::testing::Pointwise;

constexpr const char* kStrip = "area.6";
constexpr const char* kMarkers = "area.7";
enum Mode { Add, Blend, Edit, Delete };

void choose(const QWidget& panel, Mode mode) {
    click(*find(panel, "choice").findChildren<QPushButton*>().at(mode));
}

std::vector<float> positions(const SettingsRig& rig) {
    std::vector<float> all;
    const Settings settings = rig.settings();
    for (const auto& zone : settings["zoneList"])
        all.push_back(zone["position"].get<float>());
    return all;
}

QString text(const QWidget& panel, const char* field) {
    return find<QLineEdit>(panel, field).text();
}

/// The marks under the gradient, from the left.
QString marks(const QWidget& panel) {
    auto texts = panel.findChild<PanelCanvas*>()->drawing().texts();
    std::ranges::stable_sort(texts, {}, [](const auto& mark) { return mark.rect.left(); });
    QString all;
    for (const auto& mark : texts)
        all += mark.text;
    return all;
}

TEST(ZoneEditing, DragsMoveZonesAndComeBack) {
    SettingsRig rig;
    const auto start = positions(rig);
    rig.open([&](QWidget& panel) {
        // Two pixels a step of 0.001; no press moves anything by itself.
        for (const char* button : {"Shift.drag", "Scale.drag"}) {
            drag(find(panel, button), 0);
            EXPECT_EQ(positions(rig), start) << button;
        }
        for (int times = 0; times < 2; ++times)
            drag(find(panel, "Shift.drag"), 40);
        EXPECT_THAT(positions(rig), Pointwise(FloatNear(1e-5F), {0.0F, 0.29F, 0.54F, 0.79F, 1.0F}));
        drag(find(panel, "Shift.drag"), -80);
        EXPECT_THAT(positions(rig), Pointwise(FloatNear(1e-5F), start));
        drag(find(panel, "Scale.drag"), -16);
        EXPECT_NEAR(positions(rig)[2], 0.5 * std::pow(0.998, 8), 1e-5);
        click(find(panel, "Spread.button"));
        EXPECT_THAT(positions(rig), Pointwise(FloatNear(1e-5F), start));
        auto& shift = find(panel, "Shift.drag");
        QTest::mousePress(&shift, Qt::LeftButton, {}, {20, 9});
        QTest::mouseMove(&shift, {40, 9});
        QTest::keyClick(&shift, Qt::Key_Escape);
        EXPECT_THAT(positions(rig), Pointwise(FloatNear(1e-5F), start));
        QTest::keyClick(&shift, Qt::Key_Right);
        QTest::keyClick(&shift, Qt::Key_PageUp);
        EXPECT_NEAR(positions(rig)[1], 0.261, 1e-5);
        QTest::keyClick(&shift, Qt::Key_Left);
        EXPECT_NEAR(positions(rig)[1], 0.26, 1e-5);
    });
}

TEST(ZoneEditing, MarkersAreTakenByHandAndByKeys) {
    SettingsRig rig;
    const auto start = positions(rig);
    rig.open([&](QWidget& panel) {
        auto& markers = find(panel, kMarkers);
        const auto key = [&](Qt::Key pressed) { QTest::keyClick(&markers, pressed); };
        EXPECT_EQ(marks(panel), "^|||| ");
        choose(panel, Blend);
        clickAt(markers, 234);
        EXPECT_EQ(marks(panel), "|||^'| ");
        EXPECT_EQ(text(panel, "Position.percent"), "60");
        choose(panel, Delete);
        clickAt(markers, 234);
        choose(panel, Edit);
        // Pressed a little to its left, the marker itself is meant, not the zone below.
        QTest::mousePress(&markers, Qt::LeftButton, {}, QPoint(195 - 3, 6));
        EXPECT_EQ(selectedZone(panel), 2);
        EXPECT_EQ(positions(rig), start) << "a press moves nothing";
        QTest::mouseMove(&markers, QPoint(195 - 3 + 39, 6));
        EXPECT_NEAR(positions(rig)[2], 0.6, 2e-3);
        QTest::mouseMove(&markers, QPoint(395, 6));
        EXPECT_EQ(positions(rig)[2], 0.75F) << "it stops at its neighbour";
        QTest::mouseRelease(&markers, Qt::LeftButton, {}, QPoint(395, 6));
        key(Qt::Key_Left);
        EXPECT_NEAR(positions(rig)[2], 0.74, 2e-3) << "from where it is, not where the mouse was";
        key(Qt::Key_Down);
        EXPECT_EQ(selectedZone(panel), 1);
        QTest::keyClick(&markers, Qt::Key_Right, Qt::ControlModifier);
        EXPECT_NEAR(positions(rig)[1], 0.35, 2e-3);
        key(Qt::Key_Delete);
        EXPECT_EQ(positions(rig).size(), 4U);
        EXPECT_TRUE(find(panel, "choice").findChildren<QPushButton*>().at(Edit)->isChecked());
        key(Qt::Key_Home);
        key(Qt::Key_Delete);
        key(Qt::Key_Right);
        EXPECT_EQ(positions(rig).size(), 4U) << "the first zone stays, and stays where it is";
        EXPECT_EQ(positions(rig)[0], 0);
        selectPage(panel, 2);
        clickAt(markers, 20);
        EXPECT_EQ(positions(rig).size(), 4U) << "on its own page alone";
        selectPage(panel, 0);
        choose(panel, Add);
        key(Qt::Key_Space);
        EXPECT_NEAR(positions(rig)[1], positions(rig)[2] / 2, 4e-3) << "half way to the next";
        drag(markers, 60);
        EXPECT_EQ(positions(rig).size(), 6U) << "a press counts once, however the mouse moves";
    });
}

TEST(ZoneEditing, TheStripShowsZonesAndOpensTheirColor) {
    SettingsRig rig;
    rig.open([&](QWidget& panel) {
        const auto colorAt = [&](int x) { return panel.grab().toImage().pixelColor(x, 18); };
        EXPECT_EQ(colorAt(200), QColor(Qt::black));
        EXPECT_EQ(colorAt(300), QColor(Qt::blue));
        whenPicking([](QColorDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), "Zone Colour");
            EXPECT_EQ(dialog.currentColor(), QColor(Qt::blue));
            dialog.setCurrentColor(QColor(255, 128, 0));
            dialog.accept();
        });
        clickAt(find(panel, kStrip), 160);
        EXPECT_EQ(colorAt(300), QColor(255, 128, 0));
        EXPECT_NEAR(rig.settings()["zoneList"][1]["color"][1].get<double>(), 128 / 255.0, 1e-4);
        whenPicking([](QColorDialog& dialog) { dialog.reject(); });
        clickAt(find(panel, kStrip), 20);
        EXPECT_EQ(colorAt(200), QColor(Qt::black));
    });
}

TEST(ZoneEditing, SlidersShowAtEveryMoveAndTakeWhatIsTyped) {
    SettingsRig rig;
    rig.open([&](QWidget& panel) {
        EXPECT_EQ(shown(panel, "Light Colour Opacity.percent"), Shown::Ghosted);
        click(find(panel, "Account for Light Colour in Zone.check"));
        EXPECT_EQ(shown(panel, "Light Colour Opacity.percent"), Shown::Normal);
        rig.updates = 0;
        drag(find(panel, "Saturation.percent"), -40);
        EXPECT_EQ(rig.updates, 8);
        const auto saturation = [&] { return rig.settings()["zoneList"][0]["sat"].get<float>(); };
        EXPECT_FLOAT_EQ(saturation(), 0.6F);
        drag(find(panel, "Saturation.percent"), -400);
        EXPECT_EQ(saturation(), 0);
        type(panel, "Saturation.percent", "30,5");
        EXPECT_FLOAT_EQ(saturation(), 0.305F);
    });
}

}  // namespace
}  // namespace tavora::studio::testing
