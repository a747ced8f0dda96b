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

TEST_F(SettingEvents, AnyPlainControlTakesAllTwenty) {
    whileOpen([&] {
        // Quietly set all but one, then let that one speak.
        const int percents[] = {14, 11, 18, 19, 32, 33, 38, 39, 42};
        double percent = 10;
        for (int slot : percents)
            panels.at(slot).value.of.number = percent++;
        for (int slot : {10, 22, 30, 40, 41, 57, 59}) {
            int* vector = panels.at(slot).value.of.vector;
            vector[0] = slot;
            vector[1] = 128;
            vector[2] = 255;
        }
        panels.at(44).value.of.integer = 1;
        panels.at(68).value.of.integer = 2;
        panels.at(70).value.of.integer = -3;
        panels.setInteger(69, 2);
        EXPECT_EQ(host.updates, std::vector<HostInstance>{record.get()});
    });
    const float* fractions[] = {&record->highlightSize,        &record->highlightOpacity,
                                &record->highlightOutlineSize, &record->highlightOutlineOpacity,
                                &record->edgeCoverage,         &record->edgeSharpness,
                                &record->slopeTopOpacity,      &record->slopeBottomOpacity,
                                &record->slopeCenter};
    float percent = 10.0f;
    for (const float* fraction : fractions)
        EXPECT_EQ(*fraction, percent++ / 100.0f);
    const std::pair<int, const float*> colors[] = {
        {10, record->highlightColor},   {22, record->highlightOutlineColor},
        {30, record->edgeColor},        {40, record->slopeTopColor},
        {41, record->slopeBottomColor}, {57, record->inkoverColor},
        {59, record->inkoverPaintColor}};
    for (const auto& [slot, color] : colors) {
        EXPECT_EQ(color[0], static_cast<float>(slot) / 255.0f) << slot;
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
    using R = ShaderInstance;
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
    struct Swatch {
        int slot;
        int colorSlot;
        float (ShaderInstance::*field)[3];
        const char* title;
    };
    const Swatch swatches[] = {
        {4, 10, &ShaderInstance::highlightColor, "CelSpec Colour"},
        {6, 22, &ShaderInstance::highlightOutlineColor, "Outline Colour"},
        {7, 30, &ShaderInstance::edgeColor, "Edge Colour"},
        {53, 40, &ShaderInstance::slopeTopColor, "Slope Colour"},
        {54, 41, &ShaderInstance::slopeBottomColor, "Slope Colour"},
        {58, 57, &ShaderInstance::inkoverColor, "InkOver Colour"},
        {60, 59, &ShaderInstance::inkoverPaintColor, "InkOver Paint Colour"}};
    whileOpen([&] {
        for (const Swatch& swatch : swatches) {
            int* typed = panels.at(swatch.colorSlot).value.of.vector;
            typed[0] = 128;
            typed[1] = typed[2] = 0;
            // Cancelled: the typed colour stays.
            panels.onPick = [](HostColorPick& request) {
                EXPECT_EQ(request.red, 128.0f / 255.0f);
                request.red = 0.25f;
                return 0;
            };
            panels.press(swatch.slot);
            const float(&color)[3] = (*record).*swatch.field;
            EXPECT_EQ(color[0], 128.0f / 255.0f) << swatch.title;
            EXPECT_EQ(typed[0], 128);
            // Failed, though it claims a result.
            panels.onPick = [](HostColorPick& request) {
                request.red = 0.25f;
                request.result = 1;
                return 1;
            };
            panels.press(swatch.slot);
            EXPECT_EQ(color[0], 128.0f / 255.0f);
            panels.onPick = [](HostColorPick& request) {
                request.red = 0.5f;
                request.green = 0.999f;
                request.blue = 1.0f;
                request.result = 1;
                return 0;
            };
            panels.press(swatch.slot);
            EXPECT_EQ(color[0], 0.5f);
            EXPECT_EQ(typed[0], 127) << "shown without its fraction";
            EXPECT_EQ(typed[1], 254);
            EXPECT_EQ(typed[2], 255);
            EXPECT_EQ(panels.colorTitles.back(), swatch.title);
        }
        EXPECT_EQ(host.updates.size(), 3 * std::size(swatches));
    });
}

}  // namespace
}  // namespace tavora::testing
