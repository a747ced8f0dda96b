#include "panel/settings_panel.h"

#include "panel/controls/controls.h"
#include "panel/setting_events.h"
#include "plugin/record/services.h"
#include "tests/support/fake_panels.h"
#include "tests/support/heap.h"

namespace tavora::testing {
namespace {

using SettingsPanel = PanelTest;

TEST_F(SettingsPanel, OkKeepsAndCancelTakesBackEveryEdit) {
    const auto edit = [&] {
        panels.setInteger(slot::edgeEnable, 1);
        panels.at(slot::zoneMode).value.of.integer = 0;
        panels.clickAt(slot::markerStrip, 150);
        panels.at(slot::zoneMode).value.of.integer = 3;
        panels.clickAt(slot::markerStrip, 300);
        panels.setPercent(slot::opacity, 40);
        panels.setInteger(slot::lights, 0);
        panels.setInteger(slot::tabs, 3);
    };
    chooseLights(*record, {"Key"});
    const Block before = save(record.get());
    EXPECT_EQ(whileOpen(edit, false), nullptr);
    EXPECT_EQ(save(record.get()), before);
    EXPECT_EQ(record->selectedZone, record->zoneList);
    EXPECT_EQ(record->activeTab, 0);
    EXPECT_EQ(panels.opened, Names{"Tavora v1.1 3"}) << "blocking, with Cancel";

    whileOpen(edit);
    EXPECT_EQ(zonesOf(*record).size(), 5u);
    EXPECT_EQ(record->edgeEnable, 1);
    EXPECT_EQ(lightsOf(*record), (Names{"Key", "Ambient"}));
    whileOpen([&] { EXPECT_EQ(panels.at(slot::edgeCoverage).mode, HOST_DRAW_ERASE); });
    EXPECT_EQ(record->activeTab, 3);
    EXPECT_EQ(panels.at(slot::slopeCenter).mode, HOST_DRAW_GHOST) << "opens on the last tab";
}

TEST_F(SettingsPanel, ChangesThatMemoryCannotTakeBackAreKept) {
    for (int failing = 0; failing <= 12; ++failing) {  // a snapshot of record and zones, and back
        record->edgeCoverage = 0.5f;
        host.errors.clear();
        const AllocationWatch watch(failing);
        whileOpen([&] { panels.setPercent(slot::edgeCoverage, 75); }, false);
        EXPECT_EQ(record->edgeCoverage, failing <= 10 ? 0.75f : 0.5f) << failing;
        EXPECT_EQ(host.errors.size(), failing <= 10 ? 1u : 0u);
        EXPECT_EQ(zonesOf(*record).size(), 5u);
    }
}

TEST_F(SettingsPanel, SaysWhatItCouldNotAccess) {
    const Block before = save(record.get());
    host.missingServices = {"LWPanelServices"};
    EXPECT_STREQ(UI_callback(record.get()), "Could not access Panels global!");
    host.missingServices = {"Color Picker"};
    EXPECT_STREQ(UI_callback(record.get()), "Could not access color picker!");
    panels.panelsCanBeMade = false;
    EXPECT_STREQ(UI_callback(record.get()), "Could not create requester panel!");
    panels.panelsCanBeMade = true;
    host.missingServices = {"RasterServices"};
    EXPECT_EQ(whileOpen([] {}), nullptr);
    panels.controlsCanBeMade = false;
    record->activeTab = 3;
    EXPECT_EQ(whileOpen([&] { cb_updateLW(nullptr, record.get()); }), nullptr);
    EXPECT_EQ(record->activeTab, 3) << "what has no control stays";
    EXPECT_EQ(save(record.get()), before);
}

TEST_F(SettingsPanel, WritesAMissingDefaultFileOnce) {
    whileOpen([] {});
    EXPECT_TRUE(host.warnings.empty()) << "no folder to write into";
    host.settingsFolder = "/settings";
    record->edgeCoverage = 0.75f;
    for (int twice = 0; twice < 2; ++twice)
        whileOpen([] {});
    EXPECT_EQ(host.warnings, Names{"Default settings file not found / Creating default file."});
    EXPECT_EQ(host.files["/settings:tavo.default"], save(record.get()));
    EXPECT_EQ(host.openFiles, 0);

    host.missingServices = {"Directory Info"};
    acquireServices(FakeHost::lookup);
    whileOpen([] {});
    EXPECT_EQ(host.warnings.back(), "Settings directory not found / Default settings not loaded!");
    iteminfo = nullptr;
    whileOpen([] {});
    EXPECT_EQ(host.warnings.size(), 2u);
}

TEST_F(SettingsPanel, StandsInTheMiddleOfTheDisplayWithAboutAboveIt) {
    std::string about;
    whileOpen([&] {
        const Block before = save(record.get());
        panels.press(slot::about);
        EXPECT_EQ(panels.livePanels, 1);
        for (std::size_t i = 66; i < panels.controls.size(); ++i)
            about += panels.controls[i].made + "\n";
        about += joined(panels.log) + joined(panels.opened);
        EXPECT_EQ(save(record.get()), before);
        panels.controlsCanBeMade = false;
        panels.press(slot::about);
        panels.panelsCanBeMade = false;
        panels.press(slot::about);
        panels.panelsCanBeMade = true;
    });
    EXPECT_EQ(digest(about), 9798890143253110746u) << about;
    // Width, height, x, y: halves are cut towards zero.
    EXPECT_EQ(panels.attributes, (Names{"0 450", "1 362", "2 734", "3 -30"}));
}

TEST_F(SettingsPanel, OpensOnAnyRecord) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<std::vector<Zone>> lists = {
        {}, {greyZone(0.5f, nan)}, {greyZone(nan, 1e30f), greyZone(0.2f, -4.0f)}};
    for (const auto& zones : lists) {
        replaceZones(*record, zones);
        record->highlightColor[0] = nan;
        record->edgeCoverage = std::numeric_limits<float>::infinity();
        record->activeTab = 0;
        whileOpen(
            [&] {
                panels.draw(panelID, panels.drawData);
                record->selectedZone = nullptr;
                host.updates.clear();
                for (const int slot :
                     {slot::position, slot::opacity, slot::bright, slot::sat,
                      slot::accountLightOpac, slot::trans, slot::accountLights, slot::accountLume})
                    panels.press(slot);
                EXPECT_TRUE(host.updates.empty()) << "no zone is selected";
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
