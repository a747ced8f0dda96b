#include "panel/light_list.h"

#include "tests/support/fake_panels.h"
#include "tests/support/heap.h"

namespace tavora::testing {
namespace {

constexpr const char* mark = "\x03(i:MIMG_CHECKMARK)";

class LightList : public PanelTest {
  protected:
    void SetUp() override { host.lights = {{.name = "Key"}, {.name = "Fill"}}; }
    std::string cell(int row, int column) {
        const char* text = cb_multilightName(record.get(), row, column);
        return text == nullptr ? "null" : text;
    }
};

TEST_F(LightList, ShowsTheAmbientLightThenTheSceneInOrder) {
    const auto shown = [&] {
        std::string text = std::to_string(cb_lightCount(record.get()));
        for (int row = -2; row < 4; ++row)
            text += " " + cell(row, 0) + "," + cell(row, 1) + "," + cell(row, 2);
        return text;
    };
    const std::string rows = " null,null,null On,Light,null ,Ambient,null ";
    EXPECT_EQ(shown(), "3" + rows + ",Key,null ,Fill,null ,null,null");
    EXPECT_EQ(cb_lightCount(nullptr), 0);
    EXPECT_EQ(cb_multilightName(nullptr, 0, 1), nullptr);
    for (const auto& [column, width] : {std::pair{0, 25}, {1, 65}, {2, 0}})
        EXPECT_EQ(cb_multilightWidth(record.get(), column), width);
    host.missingServices = {"LW Item Info 5"};
    EXPECT_EQ(shown(), "1" + rows + ",null,null ,null,null ,null,null");
}

TEST_F(LightList, ClicksToggleInTheOrderOfChoice) {
    const std::pair<int, Names> clicks[] = {{2, {"Fill"}},
                                            {1, {"Fill", "Key"}},
                                            {0, {"Fill", "Key", "Ambient"}},
                                            {1, {"Fill", "Ambient"}},
                                            {2, {"Ambient"}},
                                            {9, {"Ambient"}}};
    whileOpen([&] {
        for (const auto& [row, chosen] : clicks) {
            panels.setInteger(slot::lights, row);
            EXPECT_EQ(lightsOf(*record), chosen) << row;
        }
        EXPECT_EQ(cell(0, 0), mark);
        EXPECT_EQ(cell(1, 0), "");
        EXPECT_EQ(host.updates.size(), 5u) << "not for a row that is not there";
    });
}

TEST_F(LightList, LightsOfOneNameShareAnEntryAsLongNamesAreKept) {
    const std::string cut(78, 'x');
    host.lights.push_back({"Key"});
    host.lights.push_back({"Ambient"});
    host.lights.push_back({cut + "\xC3\xA9"});  // 80 bytes, the last character two
    const struct {
        int clicked, alike;
        std::string name;
    } cases[] = {{3, 1, "Key"}, {4, 0, "Ambient"}, {5, 5, cut}};
    whileOpen([&] {
        for (const auto& c : cases) {
            panels.setInteger(slot::lights, c.clicked);
            EXPECT_EQ(lightsOf(*record), Names{c.name});
            EXPECT_EQ(cell(c.clicked, 0), mark);
            EXPECT_EQ(cell(c.alike, 0), mark);
            panels.setInteger(slot::lights, c.alike);
            EXPECT_TRUE(lightsOf(*record).empty());
        }
    });
}

TEST_F(LightList, AllAndNoneReplaceTheChoiceWhereMemorySuffices) {
    chooseLights(*record, {"Gone", "Ambient"});
    whileOpen([&] {
        for (const int failing : {0, 1}) {
            const AllocationWatch watch(failing);
            panels.press(slot::allLights);
        }
        {
            const AllocationWatch watch(0);
            panels.setInteger(slot::lights, 1);
        }
        EXPECT_EQ(lightsOf(*record), (Names{"Gone", "Ambient"}));
        host.updates.clear();
        panels.press(slot::allLights);
        EXPECT_EQ(lightsOf(*record), (Names{"Key", "Fill"}));
        EXPECT_EQ(panels.log, Names{"draw 48 3"});
        panels.press(slot::noLights);
        EXPECT_TRUE(lightsOf(*record).empty());
        EXPECT_EQ(panels.log.size(), 2u);
        EXPECT_EQ(host.updates.size(), 2u);
    });
}

}  // namespace
}  // namespace tavora::testing
