// The controls of the settings panel: how they are made, and what a tab shows.

#include "tests/support/fake_panels.h"

namespace tavora::testing {
namespace {

using PanelLayout = PanelTest;

TEST_F(PanelLayout, EveryControlIsMadeInItsOrderAndShowsItsOwnSetting) {
    makeDistinct(*record);
    std::string made;
    whileOpen([&] {
        for (const FakeControl& one : panels.controls) {
            made += one.made + "\n";
            EXPECT_EQ(one.userData, one.event != nullptr ? record.get() : nullptr) << one.made;
            const bool isText = one.made.rfind("TextControl", 0) == 0;
            EXPECT_EQ(one.event == nullptr, isText || &one == &panels.at(slot::zoneMode));
        }
        made += joined(panels.shown());
    });
    EXPECT_EQ(panels.controls.size(), 66u);
    EXPECT_EQ(digest(made), 13129673482724370406u) << made;
}

// Where controls stand at first, and what each tab erases, moves, draws, ghosts.
TEST_F(PanelLayout, TabsDrawTheirControlsAndGhostWhatIsOff) {
    std::string seen;
    for (int round = 0; round < 8; ++round) {
        const int a = round & 1, b = round >> 1 & 1, c = round >> 2;
        record->highlightEnable = 2 * a;
        record->slopeEnable = record->selectedZone->accountLights = a;
        record->highlightOutlineEnable = record->inkoverEnable = record->useAllLights = b;
        record->edgeEnable = record->inkoverTranslucent = c;
        panels.whileOpen = [&] {
            for (const int tab : {0, 1, 2, 3, 4, 5, 6, -1}) {
                panels.setInteger(slot::tabs, tab);
                EXPECT_EQ(record->activeTab, tab);
            }
            return true;
        };
        host.updates.clear();
        UI_callback(record.get());
        EXPECT_TRUE(host.updates.empty());
        seen += joined(std::exchange(panels.log, {}));
    }
    EXPECT_EQ(digest(seen), 16605092240646527238u) << seen;
}

}  // namespace
}  // namespace tavora::testing
