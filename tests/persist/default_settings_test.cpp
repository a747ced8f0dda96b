#include "persist/default_settings.h"

#include <gtest/gtest.h>

#include "panel/controls/controls.h"
#include "panel/default_settings_event.h"
#include "plugin/record/services.h"
#include "tests/support/open_panel.h"
#include "zones/zone_list.h"

namespace tavora::testing {
namespace {

using Lines = Names;

class DefaultSettings : public PanelTest {
  protected:
    void SetUp() override { host.settingsFolder = "/home/settings"; }

    /// A record that differs from a new one in all that a file holds.
    static void change(ShaderInstance& changed) {
        addZone(&changed, 0.6, 1);
        chooseLights(changed, {"Key", "Ambient"});
        changed.edgeCoverage = 0.35f;
        changed.maxTraceDepth = 5;
        changed.useAllLights = 0;
        changed.selectedZone = changed.zoneList->next;
    }
    const std::string path = "/home/settings:tavo.default";
};

TEST_F(DefaultSettings, NewRecordsStartFromTheStoredOnes) {
    const Block builtIn = save(record.get());
    EXPECT_EQ(save(newRecord().get()), builtIn);
    EXPECT_TRUE(host.warnings.empty() && host.errors.empty());

    change(*record);
    EXPECT_EQ(cb_setDefault(nullptr, record.get()), 1);
    host.updates.clear();
    const Record fresh = newRecord();
    EXPECT_EQ(save(fresh.get()), save(record.get()));
    EXPECT_EQ(fresh->selectedZone, fresh->zoneList);
    EXPECT_EQ(host.updates, std::vector<HostInstance>{fresh.get()});
    EXPECT_EQ(host.openFiles, 0);
}

TEST_F(DefaultSettings, AMissingFileIsNothingToSpeakOf) {
    change(*record);
    const Block before = save(record.get());
    whileOpen([&] {
        host.files.clear();
        host.warnings.clear();
        panels.press(slot::clearToDefault);
        EXPECT_EQ(save(record.get()), before);
        EXPECT_TRUE(host.updates.empty() && host.warnings.empty() && panels.log.empty());
    });
}

TEST_F(DefaultSettings, ADamagedFileLeavesTheRecordAndSaysSoOnce) {
    change(*record);
    host.files[path] = save(record.get());
    host.files[path].resize(30);
    const Record fresh = newRecord();
    EXPECT_EQ(zonesOf(*fresh).size(), 5u);
    EXPECT_EQ(host.errors,
              Lines{"Tavora: the stored default settings are damaged and were not loaded / "
                    "Delete \"tavo.default\" in the folder /home/settings, or press "
                    "\"Set as Default\" in a panel"});
}

TEST_F(DefaultSettings, ClearingShowsTheLoadedValuesButForThree) {
    const Record stored = newRecord();
    change(*stored);
    stored->forceColor = 0.3f;
    stored->slopeTopColor[1] = 0.5f;
    host.files[path] = save(stored.get());
    whileOpen([&] {
        panels.log.clear();
        panels.pixels = 0;
        panels.press(slot::clearToDefault);
        EXPECT_EQ(save(record.get()), host.files[path]);
        EXPECT_EQ(panels.at(slot::edgeCoverage).value.of.number,
                  static_cast<double>(0.35f * 100.0f));
        EXPECT_EQ(panels.at(slot::forceColor).value.of.number, static_cast<double>(0.3f * 100.0f));
        EXPECT_EQ(panels.at(slot::slopeTopColor).value.of.vector[1], 127);
        EXPECT_EQ(panels.at(slot::position).value.of.number, 0.0);
        EXPECT_EQ(panels.at(slot::maxTraceDepth).value.of.integer, 1) << "as before";
        EXPECT_EQ(panels.at(slot::useAllLights).value.of.integer, 1) << "as before";
        EXPECT_EQ(panels.log.front(), "draw 35 0") << "laid out anew";
        EXPECT_EQ(panels.pixels, 389 * 20);
        EXPECT_EQ(host.updates.size(), 1u);
    });
}

TEST_F(DefaultSettings, SayWhatIsMissing) {
    host.filesCanBeWritten = false;
    EXPECT_EQ(cb_setDefault(nullptr, record.get()), 1);
    EXPECT_EQ(host.errors, Lines{"Cound not open file for save / Creating file"});

    host.settingsFolder.clear();
    EXPECT_EQ(cb_setDefault(nullptr, record.get()), 1);
    EXPECT_EQ(cb_getDefault(nullptr, record.get()), 1);
    host.settingsFolder = std::string(1011, 'x');  // with name and NUL one too long
    host.filesCanBeWritten = true;
    EXPECT_EQ(cb_setDefault(nullptr, record.get()), 1);
    EXPECT_TRUE(host.files.empty());
    host.settingsFolder.pop_back();
    cb_setDefault(nullptr, record.get());
    EXPECT_EQ(host.files.size(), 1u);
    EXPECT_EQ(host.errors.size(), 1u);
    EXPECT_TRUE(host.warnings.empty());

    host.missingServices = {"Directory Info"};
    acquireServices(FakeHost::lookup);
    host.updates.clear();
    EXPECT_EQ(cb_setDefault(nullptr, record.get()), 0);
    EXPECT_EQ(cb_getDefault(nullptr, record.get()), 1);
    EXPECT_EQ(host.warnings,
              (Lines{"Settings directory not found / Default settings not saved!",
                     "Settings directory not found / Default settings not loaded!"}));
    EXPECT_EQ(host.updates.size(), 1u);
    host.missingServices = {"Directory Info", "File IO 2"};
    acquireServices(FakeHost::lookup);
    EXPECT_EQ(cb_setDefault(nullptr, record.get()), 2);
    EXPECT_EQ(cb_getDefault(nullptr, record.get()), 2);
    EXPECT_EQ(host.warnings.size(), 2u);
}

}  // namespace
}  // namespace tavora::testing
