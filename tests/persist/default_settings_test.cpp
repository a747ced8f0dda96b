#include "persist/default_settings.h"

#include "panel/controls/bindings.h"
#include "panel/default_settings_event.h"
#include "plugin/record/services.h"
#include "tests/support/fake_panels.h"
#include "tests/support/heap.h"
#include "zones/zone_list.h"

namespace tavora::testing {
namespace {

class DefaultSettings : public PanelTest {
  protected:
    /// Has a record that differs from a new one in all sorts of what a file holds.
    void SetUp() override {
        host.settingsFolder = "/home/settings";
        addZone(record.get(), 0.6, 1);
        chooseLights(*record, {"Key", "Ambient"});
        record->edgeCoverage = 0.35f;
    }
    const std::string path = "/home/settings:tavo.default";
};

TEST_F(DefaultSettings, NewRecordsStartFromTheStoredOnes) {
    const Block builtIn = save(newRecord().get());
    EXPECT_NE(builtIn, save(record.get()));
    EXPECT_TRUE(host.warnings.empty() && host.errors.empty());
    EXPECT_EQ(cb_setDefault(nullptr, record.get()), 1);
    host.updates.clear();
    const Record fresh = newRecord();
    EXPECT_EQ(save(fresh.get()), save(record.get()));
    EXPECT_EQ(fresh->selectedZone, fresh->zoneList);
    EXPECT_EQ(host.updates, std::vector<HostInstance>{fresh.get()});
    EXPECT_EQ(host.openFiles, 0);
}

TEST_F(DefaultSettings, AMissingOrDamagedFileLeavesTheRecord) {
    const Block before = save(record.get());
    whileOpen([&] {
        host.files.clear();
        host.warnings.clear();
        panels.press(slot::clearToDefault);
        EXPECT_EQ(save(record.get()), before);
        EXPECT_TRUE(host.updates.empty() && host.warnings.empty() && panels.log.empty());
    });
    host.files[path] = before;
    {
        const AllocationWatch noMemory(0);
        EXPECT_EQ(loadDefaultSettings(record.get()), 1);
    }
    host.files[path].resize(30);
    EXPECT_EQ(zonesOf(*newRecord()).size(), 5u);
    EXPECT_EQ(host.errors,
              (Names{"Tavora: not enough memory to load the stored default settings",
                     "Tavora: the stored default settings are damaged and were not loaded / "
                     "Delete \"tavo.default\" in the folder /home/settings, or press "
                     "\"Set as Default\" in a panel"}));
    EXPECT_EQ(save(record.get()), before);
}

TEST_F(DefaultSettings, ClearingShowsAllLoadedValuesButForThree) {
    const Record stored = newRecord();
    makeDistinct(*stored);
    host.files[path] = save(stored.get());
    whileOpen([&] {
        const Names before = panels.shown();
        panels.pixels = 0;
        panels.press(slot::clearToDefault);
        EXPECT_EQ(save(record.get()), host.files[path]);
        EXPECT_EQ(panels.log.front(), "draw 35 0") << "laid out anew";
        EXPECT_EQ(panels.pixels, 389 * 20);
        EXPECT_FALSE(panels.marks.empty());
        EXPECT_EQ(host.updates.size(), 1u);

        const Names cleared = panels.shown();
        int refreshed = 0;
        for (int slot = 0; slot < controlSlots; ++slot) {
            showSetting(slot, *record);
            const bool kept = slot == slot::tabs || slot == slot::maxTraceDepth ||
                              slot == slot::useAllLights || !hasSetting(slot);
            const auto& expected = kept ? before : panels.shown();
            EXPECT_EQ(cleared[std::size_t(slot)], expected[std::size_t(slot)]) << slot;
            refreshed += cleared[std::size_t(slot)] != before[std::size_t(slot)];
        }
        EXPECT_EQ(refreshed, 34);
    });
}

TEST_F(DefaultSettings, SayWhatIsMissing) {
    const auto setAndGet = [&] {
        const int set = cb_setDefault(nullptr, record.get());
        return std::pair(set, cb_getDefault(nullptr, record.get()));
    };
    host.filesCanBeWritten = false;
    EXPECT_EQ(setAndGet(), std::pair(1, 0));
    EXPECT_EQ(host.errors, Names{"Cound not open file for save / Creating file"});
    host.filesCanBeWritten = true;
    for (const std::size_t tooLong : {std::size_t{0}, std::size_t{1011}}) {
        host.settingsFolder = std::string(tooLong, 'x');  // none; with name and NUL one too long
        EXPECT_EQ(setAndGet(), std::pair(1, 1));
        EXPECT_TRUE(host.files.empty());
    }
    host.settingsFolder.pop_back();
    setAndGet();
    EXPECT_EQ(host.files.size(), 1u);
    EXPECT_TRUE(host.errors.size() == 1 && host.warnings.empty());

    host.missingServices = {"Directory Info"};
    acquireServices(FakeHost::lookup);
    host.updates.clear();
    EXPECT_EQ(setAndGet(), std::pair(0, 1));
    const Names warnings = {"Settings directory not found / Default settings not saved!",
                            "Settings directory not found / Default settings not loaded!"};
    EXPECT_EQ(host.warnings, warnings);
    EXPECT_EQ(host.updates.size(), 1u);
    host.missingServices.insert("File IO 2");
    acquireServices(FakeHost::lookup);
    EXPECT_EQ(setAndGet(), std::pair(2, 2));
    EXPECT_EQ(host.warnings, warnings);
}

}  // namespace
}  // namespace tavora::testing
