#include "panel/light_list.h"

#include <gtest/gtest.h>

#include "tests/support/open_panel.h"

namespace tavora::testing {
namespace {

constexpr const char* mark = "\x03(i:MIMG_CHECKMARK)";

class LightList : public PanelTest {
  protected:
    void SetUp() override {
        host.lights.push_back({"Key"});
        host.lights.push_back({"Fill"});
    }
    std::string cell(int row, int column) {
        const char* text = cb_multilightName(record.get(), row, column);
        return text == nullptr ? "null" : text;
    }
};

TEST_F(LightList, ShowsTheAmbientLightThenTheSceneInOrder) {
    EXPECT_EQ(cb_lightCount(record.get()), 3);
    EXPECT_EQ(cb_lightCount(nullptr), 0);
    EXPECT_EQ(cb_multilightName(nullptr, 0, 1), nullptr);
    EXPECT_EQ(cell(-1, 0), "On");
    EXPECT_EQ(cell(-1, 1), "Light");
    EXPECT_EQ(cell(0, 1), "Ambient");
    EXPECT_EQ(cell(1, 1), "Key");
    EXPECT_EQ(cell(2, 1), "Fill");
    EXPECT_EQ(cell(3, 1), "null");
    EXPECT_EQ(cell(1, 2), "null");
    for (const auto& [column, width] : {std::pair{0, 25}, {1, 65}, {2, 0}})
        EXPECT_EQ(cb_multilightWidth(record.get(), column), width);

    host.missingServices = {"LW Item Info 5"};
    EXPECT_EQ(cb_lightCount(record.get()), 1);
    EXPECT_EQ(cell(0, 1), "Ambient");
    EXPECT_EQ(cell(1, 1), "null");
}

TEST_F(LightList, ClicksToggleInTheOrderOfChoice) {
    whileOpen([&] {
        panels.setInteger(slot::lights, 2);
        panels.setInteger(slot::lights, 1);
        EXPECT_EQ(lightsOf(*record), (Names{"Fill", "Key"}));
        EXPECT_EQ(cell(1, 0), mark);
        EXPECT_EQ(cell(0, 0), "");
        panels.setInteger(slot::lights, 0);
        panels.setInteger(slot::lights, 1);
        EXPECT_EQ(lightsOf(*record), (Names{"Fill", "Ambient"})) << "from the middle";
        panels.setInteger(slot::lights, 2);
        EXPECT_EQ(lightsOf(*record), Names{"Ambient"}) << "the first";
        EXPECT_EQ(host.updates.size(), 5u);
        panels.setInteger(slot::lights, 9);
        EXPECT_EQ(lightsOf(*record), Names{"Ambient"});
    });
}

TEST_F(LightList, LightsOfOneNameShareAnEntry) {
    host.lights.push_back({"Key"});
    whileOpen([&] {
        panels.setInteger(slot::lights, 3);
        EXPECT_EQ(cell(1, 0), mark);
        EXPECT_EQ(cell(3, 0), mark);
        panels.setInteger(slot::lights, 1);
        EXPECT_TRUE(lightsOf(*record).empty());
    });
}

TEST_F(LightList, AllAndNoneReplaceTheChoice) {
    chooseLights(*record, {"Gone", "Ambient"});
    whileOpen([&] {
        panels.press(slot::allLights);
        EXPECT_EQ(lightsOf(*record), (Names{"Key", "Fill"}));
        EXPECT_EQ(panels.log, Names{"draw 48 3"});
        panels.press(slot::noLights);
        EXPECT_TRUE(lightsOf(*record).empty());
        EXPECT_EQ(panels.log.size(), 2u);
        EXPECT_EQ(host.updates.size(), 2u);
    });
}

TEST_F(LightList, LongNamesMatchTheirEntries) {
    host.lights.push_back({std::string(78, 'x') + "\xC3\xA9"});  // 80 bytes, the last character two
    whileOpen([&] {
        panels.setInteger(slot::lights, 3);
        EXPECT_EQ(lightsOf(*record), Names{std::string(78, 'x')});
        EXPECT_EQ(cell(3, 0), mark);
        panels.setInteger(slot::lights, 3);
        EXPECT_TRUE(lightsOf(*record).empty());
    });
}

}  // namespace
}  // namespace tavora::testing
