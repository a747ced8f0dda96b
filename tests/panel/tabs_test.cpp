#include "panel/tabs.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>

#include "tests/support/open_panel.h"

namespace tavora::testing {
namespace {

/// Draw modes by slot in the order of the log: "15:1 3:1 ..".
std::string sequence(const std::vector<std::string>& log) {
    std::string text;
    for (const std::string& entry : log) {
        std::string rest = entry.substr(5);
        std::replace(rest.begin(), rest.end(), ' ', entry[0] == 'd' ? ':' : ',');
        text += (entry[0] == 'd' ? "" : "@") + rest + " ";
    }
    return text;
}

class Tabs : public PanelTest {
  protected:
    /// What changing to a tab draws after the controls of all tabs are erased.
    std::string shownBy(int tab) {
        std::string result;
        whileOpen([&] {
            panels.setInteger(slot::tabs, tab);
            EXPECT_EQ(record->activeTab, tab);
            EXPECT_TRUE(host.updates.empty());
            const std::string all = sequence(panels.log);
            const std::size_t end = all.find("74:0 ");
            EXPECT_NE(end, std::string::npos);
            result = all.substr(end + 5);
        });
        return result;
    }
};

TEST_F(Tabs, EraseAndParkInOrder) {
    whileOpen([&] {
        panels.setInteger(slot::tabs, 5);
        std::string draws = sequence(panels.log);
        for (int slot : {6, 4, 7, 53, 54}) {
            const std::string parked = "@" + std::to_string(slot) + ",490,325 ";
            ASSERT_NE(draws.find(parked), std::string::npos) << slot;
            draws.erase(draws.find(parked), parked.size());
        }
        EXPECT_EQ(draws,
                  "35:0 23:0 23:1 69:0 15:0 3:0 9:0 8:0 5:0 22:0 25:0 21:0 20:0 19:0 18:0 17:0 "
                  "16:0 14:0 12:0 11:0 6:0 4:0 7:0 53:0 54:0 10:0 33:0 32:0 31:0 30:0 44:0 41:0 "
                  "42:0 43:0 40:0 39:0 38:0 45:0 46:0 57:0 58:0 59:0 60:0 61:0 62:0 63:0 64:0 "
                  "65:0 66:0 68:0 70:0 72:0 74:0 36:1 37:1 36:2 37:2 48:2 68:1 ");
    });
}

TEST_F(Tabs, DrawTheirControlsThenGhostWhatIsOff) {
    const std::string lights = "36:1 37:1 36:2 37:2 48:2 ";
    EXPECT_EQ(shownBy(0), lights + "15:1 3:1 9:1 8:1 5:1 50:1 25:1 69:1 72:1 74:1 72:2 ");
    EXPECT_EQ(shownBy(1), lights +
                              "@6,295,212 @4,295,122 "
                              "22:1 21:1 20:1 19:1 18:1 17:1 16:1 14:1 12:1 11:1 10:1 6:1 4:1 "
                              "50:2 18:2 19:2 22:2 14:2 11:2 10:2 ");
    EXPECT_EQ(shownBy(2), lights +
                              "@7,205,211 33:1 32:1 31:1 30:1 45:1 7:1 "
                              "50:2 30:2 32:2 33:2 ");
    EXPECT_EQ(shownBy(3), lights +
                              "@53,303,122 @54,303,152 "
                              "44:1 41:1 42:1 43:1 40:1 39:1 38:1 46:1 53:1 54:1 "
                              "50:2 38:2 39:2 40:2 41:2 44:2 42:2 ");
    EXPECT_EQ(shownBy(4), lights +
                              "57:1 58:1 59:1 60:1 61:1 62:1 63:1 64:1 65:1 66:1 70:1 "
                              "57:2 58:2 59:2 60:2 63:2 64:2 65:2 66:2 70:2 ");
    EXPECT_EQ(shownBy(5), lights + "68:1 ");
    EXPECT_EQ(shownBy(6), lights);
    EXPECT_EQ(shownBy(-1), lights);
}

TEST_F(Tabs, GhostNothingThatIsOn) {
    record->useAllLights = 0;
    record->highlightEnable = 2;
    record->highlightOutlineEnable = record->edgeEnable = record->slopeEnable = 1;
    record->inkoverEnable = record->inkoverTranslucent = 1;
    record->selectedZone->accountLights = 1;
    const auto ghosts = [this](int tab) {
        std::istringstream all(shownBy(tab));
        std::string result;
        for (std::string one; all >> one;)
            if (one.ends_with(":2")) result += one.substr(0, one.size() - 1);
        return result;
    };
    EXPECT_EQ(ghosts(0), "");
    for (int tab : {1, 2, 3})
        EXPECT_EQ(ghosts(tab), "50:");
    EXPECT_EQ(ghosts(4), "57:58:59:60:");
}

TEST_F(Tabs, LeaveTheZoneModeAsTheLastTabLeftIt) {
    whileOpen([&] {
        panels.setInteger(slot::tabs, 4);
        EXPECT_EQ(panels.at(slot::zoneMode).mode, HOST_DRAW_NORMAL);
        panels.setInteger(slot::tabs, 2);
        panels.setInteger(slot::tabs, 4);
        EXPECT_EQ(panels.at(slot::zoneMode).mode, HOST_DRAW_GHOST);
    });
}

}  // namespace
}  // namespace tavora::testing
