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

TEST_F(LightList, ClicksToggleNamesInTheOrderOfChoice) {
    const std::string cut(78, 'x');
    host.lights.push_back({"Key"});
    host.lights.push_back({"Ambient"});
    host.lights.push_back({cut + "\xC3\xA9"});  // 80 bytes, the last character two
    const struct {
        int row;
        Names chosen;
        std::string marked;  // rows; lights of one name share an entry
    } clicks[] = {{2, {"Fill"}, "2"},
                  {1, {"Fill", "Key"}, "123"},
                  {0, {"Fill", "Key", "Ambient"}, "01234"},
                  {3, {"Fill", "Ambient"}, "024"},
                  {4, {"Fill"}, "2"},
                  {5, {"Fill", cut}, "25"},
                  {2, {cut}, "5"},
                  {9, {cut}, "5"},
                  {5, {}, ""}};
    whileOpen([&] {
        for (const auto& click : clicks) {
            panels.setInteger(slot::lights, click.row);
            EXPECT_EQ(lightsOf(*record), click.chosen) << click.row;
            std::string marked;
            for (int row = 0; row < 6; ++row)
                marked += cell(row, 0) == mark ? std::to_string(row) : cell(row, 0);
            EXPECT_EQ(marked, click.marked) << click.row;
        }
        EXPECT_EQ(host.updates.size(), 8u) << "not for a row that is not there";
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
