#include <algorithm>
#include <gtest/gtest.h>

#include "tests/support/open_panel.h"

namespace tavora::testing {
namespace {

using SettingEvents = PanelTest;

std::string drawn(const FakePanels& panels) {
    std::string text;
    for (const std::string& entry : panels.log)
        text += entry.substr(5) + ",";
    return text;
}

struct Percent {
    int slot;
    float ShaderInstance::*field;
};
struct Color {
    int slot;
    float (ShaderInstance::*field)[3];
    int swatch;
    const char* title;
};
using R = ShaderInstance;
const Percent percents[] = {
    {14, &R::highlightSize},           {11, &R::highlightOpacity},   {18, &R::highlightOutlineSize},
    {19, &R::highlightOutlineOpacity}, {32, &R::edgeCoverage},       {33, &R::edgeSharpness},
    {38, &R::slopeTopOpacity},         {39, &R::slopeBottomOpacity}, {42, &R::slopeCenter}};
const Color colors[] = {{10, &R::highlightColor, 4, "CelSpec Colour"},
                        {22, &R::highlightOutlineColor, 6, "Outline Colour"},
                        {30, &R::edgeColor, 7, "Edge Colour"},
                        {40, &R::slopeTopColor, 53, "Slope Colour"},
                        {41, &R::slopeBottomColor, 54, "Slope Colour"},
                        {57, &R::inkoverColor, 58, "InkOver Colour"},
                        {59, &R::inkoverPaintColor, 60, "InkOver Paint Colour"}};

TEST_F(SettingEvents, AnyPlainControlTakesAllTwenty) {
    whileOpen([&] {
        // Quietly set all but one, then let that one speak.
        for (const Percent& one : percents)
            panels.at(one.slot).value.of.number = one.slot;
        for (const Color& one : colors) {
            const int typed[] = {one.slot, 128, 255};
            std::copy(typed, typed + 3, panels.at(one.slot).value.of.vector);
        }
        panels.at(44).value.of.integer = 1;
        panels.at(68).value.of.integer = 2;
        panels.at(70).value.of.integer = -3;
        panels.setInteger(69, 2);
        EXPECT_EQ(host.updates, std::vector<HostInstance>{record.get()});
    });
    for (const Percent& one : percents)
        EXPECT_EQ((*record).*one.field, static_cast<float>(one.slot) / 100.0f) << one.slot;
    for (const Color& one : colors) {
        const float(&color)[3] = (*record).*one.field;
        EXPECT_EQ(color[0], static_cast<float>(one.slot) / 255.0f) << one.slot;
        EXPECT_EQ(color[1], 128.0f / 255.0f);
        EXPECT_EQ(color[2], 1.0f);
    }
    EXPECT_EQ(record->slopeStyle, 1);
    EXPECT_EQ(record->lightPower, 2);
    EXPECT_EQ(record->maxTraceDepth, -3);
    EXPECT_EQ(record->colorTextureUse, 2);
}

TEST_F(SettingEvents, PercentIsNotClampedAndNarrowedFirst) {
    whileOpen([&] {
        panels.setPercent(slot::forceColor, 150.0);
        EXPECT_EQ(record->forceColor, 1.5f);
        panels.setPercent(slot::forceColor, 33.3);
        EXPECT_EQ(record->forceColor, static_cast<float>(33.3) / 100.0f);
        EXPECT_EQ(host.updates.size(), 2u);
    });
}

struct SwitchCase {
    int slot;
    std::int32_t ShaderInstance::*field;
    int value;
    const char* drawn;
};

TEST_F(SettingEvents, SwitchesDrawAndGhostTheirGroups) {
    const SwitchCase cases[] = {
        {12, &R::highlightEnable, 1, "14 1,11 1,4 1,10 1,"},
        {12, &R::highlightEnable, 2, "14 1,11 1,4 1,10 2,"},
        {12, &R::highlightEnable, 0, "14 2,11 2,4 0,10 2,"},
        {20, &R::highlightOutlineEnable, 1, "18 1,19 1,22 1,"},
        {20, &R::highlightOutlineEnable, 0, "18 2,19 2,22 2,"},
        {31, &R::edgeEnable, 1, "30 1,32 1,33 1,"},
        {31, &R::edgeEnable, 0, "30 2,32 2,33 2,"},
        {43, &R::slopeEnable, 1, "38 1,39 1,40 1,41 1,42 1,44 1,"},
        {43, &R::slopeEnable, 0, "38 2,39 2,40 2,41 2,42 2,44 2,"},
        {61, &R::inkoverEnable, 1, "57 1,59 1,63 1,70 1,"},
        {61, &R::inkoverEnable, 0, "57 2,59 2,63 2,70 2,"},
        {63, &R::inkoverObject, 0, ""},
        {71, &R::useAllLights, 0, "48 1,37 1,36 1,"},
        {71, &R::useAllLights, 1, "48 2,37 2,36 2,"},
    };
    whileOpen([&] {
        for (const SwitchCase& one : cases) {
            panels.log.clear();
            host.updates.clear();
            panels.setInteger(one.slot, one.value);
            EXPECT_EQ((*record).*one.field, one.value) << one.slot;
            EXPECT_EQ(drawn(panels), one.drawn) << one.slot << " to " << one.value;
            EXPECT_EQ(host.updates.size(), 1u) << one.slot;
        }
        record->inkoverTranslucent = 1;
        panels.log.clear();
        panels.setInteger(61, 1);
        EXPECT_EQ(drawn(panels), "57 1,59 1,63 1,70 1,57 2,58 2,59 2,60 2,");
    });
}

TEST_F(SettingEvents, ZoneSwitchesEditTheSelectedZone) {
    whileOpen([&] {
        panels.setInteger(25, 1);
        EXPECT_EQ(record->selectedZone->accountLights, 1);
        panels.setInteger(25, 0);
        EXPECT_EQ(drawn(panels), "72 1,72 2,");
        EXPECT_EQ(host.updates.size(), 2u);
        panels.setInteger(35, 1);
        EXPECT_EQ(record->selectedZone->accountLume, 1);
        EXPECT_EQ(host.updates.size(), 2u) << "says nothing to the host";

        record->selectedZone = nullptr;
        for (int slot : {3, 5, 8, 9, 72, 74})
            panels.setPercent(slot, 50);
        panels.setInteger(25, 1);
        panels.setInteger(35, 1);
        EXPECT_EQ(host.updates.size(), 2u);
    });
}

TEST_F(SettingEvents, SwatchesPickFromTheColourThatIsShown) {
    whileOpen([&] {
        for (const Color& one : colors) {
            int* typed = panels.at(one.slot).value.of.vector;
            typed[0] = 128;
            typed[1] = typed[2] = 0;
            const auto pick = [&](int result, int error) {
                panels.onPick = [=](HostColorPick& request) {
                    EXPECT_EQ(request.red, 128.0f / 255.0f);
                    request.red = 0.5f;
                    request.green = 0.999f;
                    request.blue = 1.0f;
                    request.result = result;
                    return error;
                };
                panels.press(one.swatch);
                return ((*record).*one.field)[0];
            };
            EXPECT_EQ(pick(0, 0), 128.0f / 255.0f) << "cancelled: the typed colour stays";
            EXPECT_EQ(pick(1, 1), 128.0f / 255.0f) << "failed, though it claims a result";
            EXPECT_EQ(typed[0], 128);
            EXPECT_EQ(pick(1, 0), 0.5f);
            EXPECT_EQ(std::vector<int>(typed, typed + 3), (std::vector{127, 254, 255}))
                << "shown without its fraction";
            EXPECT_EQ(panels.colorTitles.back(), one.title);
        }
        EXPECT_EQ(host.updates.size(), 3 * std::size(colors));
    });
}

}  // namespace
}  // namespace tavora::testing
