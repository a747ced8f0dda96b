
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "studio/panels/canvas.h"
#include "studio/panels/panel_dialog.h"
#include "tests/panels/settings_rig.h"

namespace tavora::studio::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::FloatNear;
using ::testing::IsEmpty;
using ::testing::Pointwise;

/// The labels and fields that overlap others, stick out of the panel, or have no
/// room for their text.
std::vector<std::string> misplaced(const QWidget& panel) {
    std::vector<std::string> all;
    std::vector<PanelControl*> seen;
    for (auto* control : panel.findChildren<PanelControl*>()) {
        if (control->isErased() || control->layoutItem().kind == LayoutKind::Area) continue;
        const auto* label = qobject_cast<QLabel*>(&control->field());
        bool good = control->field().parentWidget()->rect().contains(control->area()) &&
                    (label == nullptr || label->width() >= label->sizeHint().width());
        for (const PanelControl* other : seen)
            good = good && !other->area().intersects(control->area());
        if (!good) all.push_back(control->objectName().toStdString());
        seen.push_back(control);
    }
    return all;
}

TEST(SettingsPanel, EveryPageIsLaidOutWithoutOverlapsAndExplained) {
    SettingsRig rig;
    int pages = 0;
    rig.draw([&](QWidget& panel) {
        EXPECT_FALSE(panel.isVisible());
        EXPECT_GT(panel.width(), 540);  // the frame ends at 535
        for (const PanelControl* control : panel.findChildren<PanelControl*>()) {
            EXPECT_FALSE(control->field().toolTip().isEmpty() ||
                         control->field().accessibleName().isEmpty())
                << control->objectName().toStdString();
        }
        for (; pages < 6; ++pages) {
            ASSERT_TRUE(selectTab(panel, pages));
            EXPECT_THAT(misplaced(panel), IsEmpty()) << pages;
        }
        EXPECT_FALSE(selectTab(panel, 6));
    });
    EXPECT_EQ(pages, 6);
}

void press(QWidget& panel, std::initializer_list<Qt::Key> keys) {
    for (const Qt::Key key : keys)
        QTest::keyClick(panel.focusWidget() != nullptr ? panel.focusWidget() : &panel, key);
}

TEST(SettingsPanel, TheKeyboardAloneSufficesAndMeetsEveryUsableControlOnce) {
    SettingsRig rig;
    rig.apply(R"({"edgeEnable": true, "edgeCoverage": 0.5})");
    EXPECT_TRUE(rig.open([&](QWidget& panel) {
        std::vector<QWidget*> met;
        for (QWidget* first = panel.focusWidget(); met.empty() || panel.focusWidget() != first;) {
            met.push_back(panel.focusWidget());
            press(panel, {Qt::Key_Tab});
            ASSERT_LT(met.size(), 100U);
        }
        for (const char* name : {"About.button", "area.6", "area.7", "Position.percent",
                                 "Shift.drag", "Use All Lights.check", "Set as Default.button"})
            EXPECT_EQ(std::ranges::count(met, &find(panel, name)), 1) << name;
        EXPECT_EQ(panel.focusWidget()->objectName(), "tab");
        press(panel, {Qt::Key_Right, Qt::Key_Right, Qt::Key_Tab});
        EXPECT_EQ(panel.focusWidget()->objectName(), "Coverage.percent");
        press(panel, {Qt::Key_PageUp, Qt::Key_Up, Qt::Key_Down, Qt::Key_Down, Qt::Key_Tab});
        EXPECT_EQ(panel.focusWidget()->objectName(), "Sharpness.percent");
        for (int times = 0; times < 5; ++times)
            press(panel, {Qt::Key_Tab});
        press(panel, {Qt::Key_Space, Qt::Key_Backtab});
        EXPECT_EQ(rig.settings()["edgeEnable"], false);
        // Enter enters what was typed; the next one is OK.
        press(panel, {Qt::Key_Tab, Qt::Key_Tab, Qt::Key_6, Qt::Key_0, Qt::Key_Return});
        EXPECT_FLOAT_EQ(rig.settings()["forceColor"].get<float>(), 0.6F);
        EXPECT_TRUE(panel.isVisible());
        press(panel, {Qt::Key_Return});
        EXPECT_FALSE(panel.isVisible());
    }));
    EXPECT_FLOAT_EQ(rig.settings()["edgeCoverage"].get<float>(), 0.59F);
}

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
        rig.updates = 0;
        for (int times = 0; times < 2; ++times)
            drag(find(panel, "Shift.drag"), 40);
        EXPECT_EQ(rig.updates, 16) << "shown at every move";
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
    });
}

TEST(ZoneEditing, MarkersAreTakenByHandAndByKeys) {
    SettingsRig rig;
    const auto start = positions(rig);
    rig.open([&](QWidget& panel) {
        auto& markers = find(panel, "area.7");
        const auto key = [&](Qt::Key pressed) { QTest::keyClick(&markers, pressed); };
        EXPECT_EQ(marks(panel), "^|||| ");
        whenPicking(
            [](QColorDialog& dialog) { dialog.setCurrentColor(Qt::green), dialog.accept(); });
        clickAt(find(panel, "area.6"), 160);
        EXPECT_EQ(panel.grab().toImage().pixelColor(300, 18), QColor(Qt::green));
        choose(panel, Blend);
        clickAt(markers, 234);
        EXPECT_EQ(marks(panel), "|||^'| ");
        EXPECT_EQ(find<QLineEdit>(panel, "Position.percent").text(), "60");
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

}  // namespace
}  // namespace tavora::studio::testing
