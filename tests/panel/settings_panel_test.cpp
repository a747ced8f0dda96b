#include "panel/settings_panel.h"

#include <cstring>
#include <gtest/gtest.h>

#include "panel/controls/controls.h"
#include "plugin/record/services.h"
#include "tests/support/open_panel.h"
#include "zones/editor/gradient_painter.h"

namespace tavora::testing {
namespace {

using SettingsPanel = PanelTest;
using Lines = Names;

/// Edits of every sort, through the controls.
void editAll(FakePanels& panels) {
    panels.setInteger(slot::edgeEnable, 1);
    panels.at(slot::zoneMode).value.of.integer = 0;
    panels.clickAt(slot::markerStrip, 150);
    panels.at(slot::zoneMode).value.of.integer = 3;
    panels.clickAt(slot::markerStrip, 300);
    panels.setPercent(slot::opacity, 40);
    panels.setInteger(slot::lights, 0);
    panels.setInteger(slot::tabs, 3);
}

TEST_F(SettingsPanel, OkKeepsAndCancelTakesBackEveryEdit) {
    chooseLights(*record, {"Key"});
    const Block before = save(record.get());
    EXPECT_EQ(whileOpen([&] { editAll(panels); }, false), nullptr);
    EXPECT_EQ(save(record.get()), before);
    EXPECT_EQ(record->selectedZone, record->zoneList);
    EXPECT_EQ(record->activeTab, 0);
    EXPECT_EQ(panels.openMode, HOST_PANEL_BLOCKING | HOST_PANEL_CANCEL);

    whileOpen([&] { editAll(panels); }, true);
    EXPECT_NE(save(record.get()), before);
    EXPECT_EQ(lightsOf(*record), (Lines{"Key", "Ambient"}));
    whileOpen([&] { EXPECT_EQ(panels.at(slot::edgeCoverage).mode, HOST_DRAW_ERASE); });
    EXPECT_EQ(record->activeTab, 3);
    EXPECT_EQ(panels.at(slot::slopeCenter).mode, HOST_DRAW_GHOST) << "opens on the last tab";
}

TEST_F(SettingsPanel, SaysWhatItCouldNotAccess) {
    const Block before = save(record.get());
    host.missingServices = {"LWPanelServices"};
    EXPECT_STREQ(UI_callback(record.get()), "Could not access Panels global!");
    host.missingServices = {"Color Picker"};
    EXPECT_STREQ(UI_callback(record.get()), "Could not access color picker!");
    host.missingServices.clear();
    panels.panelsCanBeMade = false;
    EXPECT_STREQ(UI_callback(record.get()), "Could not create requester panel!");
    panels.panelsCanBeMade = true;
    host.missingServices = {"RasterServices"};
    EXPECT_EQ(whileOpen([] {}), nullptr);
    EXPECT_EQ(save(record.get()), before);
}

TEST_F(SettingsPanel, WritesAMissingDefaultFileOnce) {
    host.settingsFolder = "/settings";
    record->edgeCoverage = 0.75f;
    whileOpen([] {});
    EXPECT_EQ(host.warnings, Lines{"Default settings file not found / Creating default file."});
    EXPECT_EQ(host.files["/settings:tavo.default"], save(record.get()));
    whileOpen([] {});
    EXPECT_EQ(host.warnings.size(), 1u);
    EXPECT_EQ(host.openFiles, 0);

    host.missingServices = {"Directory Info"};
    acquireServices(FakeHost::lookup);
    whileOpen([] {});
    EXPECT_EQ(host.warnings.back(), "Settings directory not found / Default settings not loaded!");
}

TEST_F(SettingsPanel, StandsInTheMiddleOfTheDisplayWithAboutAboveIt) {
    whileOpen([&] {
        const Block before = save(record.get());
        panels.press(slot::about);
        EXPECT_EQ(panels.titles, (Lines{"Tavora v1.1", "About"}));
        EXPECT_EQ(panels.livePanels, 1);
        const char* starts[] = {
            "17,13: Version 1.10.6       October 2001 / ",
            "31,59: Programming / Implementation /             ",
            "8,103: Concept / Interface Design / Documentation /                     "};
        ASSERT_EQ(panels.aboutTexts.size(), std::size(starts));
        for (std::size_t i = 0; i < std::size(starts); ++i) {
            EXPECT_EQ(panels.aboutTexts[i].rfind(starts[i], 0), 0u) << panels.aboutTexts[i];
            EXPECT_NE(panels.aboutTexts[i][std::strlen(starts[i])], ' ') << "centred";
        }
        EXPECT_EQ(save(record.get()), before);
        panels.panelsCanBeMade = false;
        panels.press(slot::about);
        panels.panelsCanBeMade = true;
    });
    const std::vector<std::pair<int, int>> expected = {
        {HOST_PANEL_WIDTH, 450},
        {HOST_PANEL_HEIGHT, 362},
        {HOST_PANEL_X, (1919 - 450) / 2},
        {HOST_PANEL_Y, (301 - 362) / 2},  // towards zero
    };
    EXPECT_EQ(panels.attributes, expected);
}

TEST_F(SettingsPanel, OpensOnAnyRecord) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<std::vector<Zone>> lists = {
        {}, {greyZone(0.5f, nan)}, {greyZone(nan, 1e30f), greyZone(0.2f, -4.0f)}};
    for (const auto& zones : lists) {
        replaceZones(*record, zones);
        if (zones.empty()) record->selectedZone = nullptr;
        record->highlightColor[0] = nan;
        record->edgeCoverage = std::numeric_limits<float>::infinity();
        record->activeTab = 0;
        whileOpen(
            [&] {
                redraw(panelID, record.get());
                for (int mode = 0; mode < 5; ++mode) {
                    panels.at(slot::zoneMode).value.of.integer = mode;
                    panels.clickAt(slot::markerStrip, 394);
                    panels.clickAt(slot::gradientStrip, 10);
                }
                panels.press(slot::spread);
                panels.dragTo(slot::shift, 1000, 100000);
                panels.dragTo(slot::scale, std::numeric_limits<int>::min(), 100001);
                panels.setPercent(slot::position, 50);
                panels.press(slot::clearToDefault);
            },
            false);
    }
}

}  // namespace
}  // namespace tavora::testing
