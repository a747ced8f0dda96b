#include "studio/scene/settings/settings.h"

#include <bit>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "persist/stored_fields.h"
#include "tests/scene/settings_samples.h"

namespace tavora::studio {
namespace {

using testing::HasSubstr;

std::string applyRefusal(const std::string& changes) {
    Settings settings = settingsOf(sampleBlock());
    return refusal([&] { applySettings(settings, Settings::parse(changes), "here"); });
}

Settings applied(const std::string& changes) {
    Settings settings = settingsOf(sampleBlock());
    applySettings(settings, Settings::parse(changes), "here");
    return settings;
}

// Equal items, with floats compared by their bits.
void expectSameBits(const StateBlock& a, const StateBlock& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        ASSERT_EQ(a[i].index(), b[i].index()) << "item " << i;
        if (const auto* number = std::get_if<float>(&a[i])) {
            EXPECT_EQ(std::bit_cast<std::uint32_t>(*number),
                      std::bit_cast<std::uint32_t>(std::get<float>(b[i])))
                << "item " << i;
        } else {
            EXPECT_EQ(a[i], b[i]) << "item " << i;
        }
    }
}

/// Expects these values, to the digit that is written.
void expectValues(const Settings& settings, const std::string& expected) {
    const Settings values = Settings::parse(expected);
    for (const auto& one : values.items())
        EXPECT_EQ(settings.at(Settings::json_pointer(one.key())).dump(), one.value().dump());
}

TEST(Settings, NameEveryValueOfABlock) {
    const Settings settings = settingsOf(sampleBlock());
    EXPECT_EQ(settings.size(), std::size(storedFields));
    expectValues(settings, R"({"/highlightOutlineEnable": false, "/highlightEnable": "Light",
        "/edgeEnable": true, "/slopeStyle": "Step", "/slopeCenter": 0.65,
        "/slopeTopColor": [1.0, 0.99, 0.98], "/maxTraceDepth": 3, "/lightPower": "Cubed",
        "/reserved[1]": -8, "/inkoverTranslucent": true, "/lightList": ["Key", "F\u00fcll"],
        "/zoneList/1": {"color": [0.25, 0.5, 0.75], "position": 0.5, "opacity": 1.0,
            "blend": true, "bright": 0.9, "sat": 0.8, "reserved": 0, "accountLights": true,
            "accountLightOpac": 0.7, "trans": 0.0, "accountLume": false}})");
}

TEST(Settings, ReturnTheSameBlockBitForBit) {
    expectSameBits(blockOf(settingsOf(sampleBlock())), sampleBlock());
    const float odd[] = {std::bit_cast<float>(0x7fc00000U),
                         std::bit_cast<float>(0xffc12345U),
                         std::numeric_limits<float>::infinity(),
                         -std::numeric_limits<float>::infinity(),
                         -0.0F,
                         1e-45F,
                         std::numeric_limits<float>::max(),
                         16777216.0F};
    for (const float value : odd) {
        StateBlock block = sampleBlock(zoneItems(value, 7, value), 1);
        block[2] = value;
        block[1] = std::int32_t{7};   // a switch that is neither on nor off
        block[7] = std::int32_t{-3};  // a choice that no label stands for
        const std::string text = settingsOf(block).dump();
        expectSameBits(blockOf(Settings::parse(text)), block);
    }
    expectSameBits(blockOf(settingsOf(sampleBlock({}, 0))), sampleBlock({}, 0));
}

TEST(Settings, PrintFloatsShortYetExact) {
    std::uint32_t bits = 1;
    for (int i = 0; i < 200000; ++i) {
        bits = bits * 1664525U + 1013904223U;
        const auto value = std::bit_cast<float>(bits);
        if (!std::isfinite(value)) continue;
        StateBlock block = sampleBlock({}, 0);
        block[2] = value;
        const std::string text = settingsOf(block)["highlightOutlineSize"].dump();
        ASSERT_EQ(std::bit_cast<std::uint32_t>(Settings::parse(text).get<float>()), bits) << text;
        ASSERT_NE(text.find_first_of(".e"), std::string::npos);
    }
    for (int i = 0; i <= 100; ++i) {
        StateBlock block = sampleBlock({}, 0);
        block[2] = static_cast<float>(i) / 100;
        ASSERT_LE(settingsOf(block)["highlightOutlineSize"].dump().size(), 4U);
    }
}

TEST(Settings, OlderBlocksTakeWhatTheyLackFromElsewhere) {
    StateBlock block = sampleBlock({}, 0);
    const std::size_t forceColor = block.size() - 20;
    ASSERT_EQ(block[forceColor], StateItem(0.75F));
    block[0] = 1;
    block[forceColor] = 7;
    block.resize(forceColor + 1);
    const Settings settings = settingsOf(block, settingsOf(sampleBlock()));
    EXPECT_EQ(settings["forceColor"], 1.0);
    EXPECT_EQ(settings["maxTraceDepth"], 3);
    EXPECT_THAT(refusal([&] { blockOf(settingsOf(block)); }), HasSubstr("inkoverColor"));

    block = sampleBlock({0.25F, 0.5F, 0.75F, 0.5F, 1.0F, 0, 0.9F, 0.8F, 0, 1, 0}, 1);
    block[0] = 3;
    block.resize(block.size() - 7);
    const Settings zone = settingsOf(block)["zoneList"][0];
    EXPECT_EQ(zone["accountLightOpac"], 1.0);
    EXPECT_EQ(zone["trans"], 0.0);
}

TEST(Settings, EveryPrefixOfABlockIsDamaged) {
    const StateBlock whole = sampleBlock();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const StateBlock block(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_THAT(refusal([&] { settingsOf(block); }), HasSubstr("damaged")) << size;
    }
    EXPECT_THAT(refusal([] { settingsOf(sampleBlock({}, 1'000'001)); }), HasSubstr("1000001"));
    StateBlock swapped = whole;
    swapped[2] = 1;
    EXPECT_THAT(refusal([&] { settingsOf(swapped); }), HasSubstr("highlightOutlineSize"));
}

TEST(Settings, TakeWhatPeopleWrite) {
    const Settings settings = applied(R"({
        "highlightEnable": "on", "lightPower": 1, "edgeEnable": 0, "slopeEnable": "On",
        "edgeColor": "#ff8000", "slopeTopColor": [0, 0.5, 1], "edgeCoverage": 1,
        "lights": "Key", "maxTraceDepth": 5})");
    expectValues(settings, R"({"/highlightEnable": "On", "/lightPower": "Squared",
        "/edgeEnable": false, "/slopeEnable": true, "/edgeColor": [1.0, 0.5019608, 0.0],
        "/slopeTopColor": [0.0, 0.5, 1.0], "/edgeCoverage": 1.0, "/lightList": ["Key"]})");
    EXPECT_EQ(blockOf(settings).size(), sampleBlock().size() - 1);
    expectValues(applied(R"({"zones[1].opacity": 0.25, "zoneList[0].color": "#ffffff"})"),
                 R"({"/zoneList/1/opacity": 0.25, "/zoneList/1/bright": 0.9,
                     "/zoneList/0/color": [1.0, 1.0, 1.0]})");
    expectValues(applied(R"({"zones": [{"position": 1}, {"position": 0.5, "blend": true},
                                       {"position": 0, "trans": 0.5}]})"),
                 R"({"/zoneList/0/trans": 0.5, "/zoneList/1/blend": true,
                     "/zoneList/2/position": 1.0, "/zoneList/2/color": [0.3, 0.5, 0.7],
                     "/zoneList/2/accountLightOpac": 1.0})");
}

struct Refused {
    const char* changes;
    const char* says;
};

TEST(Settings, SayWhatIsWrongWithAValue) {
    const Refused cases[] = {
        {R"({"edgeCoverge": 0.3})",
         "here: unknown setting \"edgeCoverge\"; did you mean edgeCoverage"},
        {R"({"zones[0].colour": "#ffffff"})",
         "zones[0]: unknown setting \"colour\"; did you mean color"},
        {R"({"edgeCoverage": 20})", "edgeCoverage must be a number from 0 to 1, not 20"},
        {R"({"edgeCoverage": "wide"})", "not \"wide\""},
        {R"({"edgeCoverage": {"float": "NaN"}})", "a number"},
        {R"({"edgeEnable": 2})", "true or false"},
        {R"({"highlightEnable": "Lights"})", R"(one of "Off", "On", "Light", not "Lights")"},
        {R"({"highlightEnable": 3})", "one of"},
        {R"({"edgeColor": "#ff80"})", "#rrggbb"},
        {R"({"edgeColor": "#gg0000"})", "#rrggbb"},
        {R"({"edgeColor": [1, 1]})", "#rrggbb"},
        {R"({"edgeColor": [1, 1, 2]})", "from 0 to 1, not 2"},
        {R"({"maxTraceDepth": -1})", "whole number"},
        {R"({"maxTraceDepth": 18446744073709551615})", "whole number"},
        {R"({"lights": [1]})", "light names"},
        {R"({"zones[3].color": "#ffffff"})", "no zones[3]; the last is zones[2]"},
        {R"({"zones[0": 1})", "unknown setting"},
        {R"({"zones[99999999999999999999].color": 1})", "unknown setting"},
        {R"([1])", "object"},
        {R"({"zones": []})", "two zones"},
        {R"({"zones": [{"position": 0}]})", "two zones"},
        {R"({"zones": [{"position": 0.5, "blend": true}, {"position": 1}]})", "be ordinary"},
        {R"({"zones": [{"position": 0}, {"position": 0.5, "blend": true}]})", "be ordinary"},
        {R"({"zones": [{"position": 0}, {"position": 0.4, "blend": 1},
                       {"position": 0.5, "blend": true}, {"position": 1}]})",
         "zones 1 and 2"},
        {R"({"zones": [{"color": "#ffffff"}, {"position": 1}]})", "position"},
        {R"({"zones[1].position": 1, "zones[0].blend": true})", "be ordinary"},
    };
    for (const Refused& refused : cases) {
        EXPECT_THAT(applyRefusal(refused.changes), HasSubstr(refused.says)) << refused.changes;
    }
    const std::string name(80, 'x');
    EXPECT_THAT(applyRefusal("{\"lights\": [\"" + name + "\"]}"), HasSubstr("79 bytes"));
}

TEST(Settings, ChangesAreSettledWithTheLightsAtHand) {
    const std::vector<std::string> scene{"Key", "Rim"};
    const auto lightsWith = [&](const Settings& lights) {
        return withChanges(sampleBlock(), {{"lights", lights}}, "here", scene);
    };
    EXPECT_EQ(settingsOf(lightsWith("all"))["lightList"].dump(), R"(["Key","Rim"])");
    EXPECT_TRUE(unknownLights(lightsWith("all"), scene).empty());
    EXPECT_EQ(unknownLights(lightsWith({"Rim", "Fill", "Ambient"}), scene),
              std::vector<std::string>{"Fill"});
}

}  // namespace
}  // namespace tavora::studio
