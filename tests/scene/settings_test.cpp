#include "studio/scene/settings/settings.h"

#include <bit>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "persist/stored_fields.h"
#include "studio/scene/settings/shader_extras.h"
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

/// A complete block as that version wrote it.
StateBlock blockOfVersion(std::int32_t version) {
    StateBlock zone = zoneItems(0.5F, 0, 0.25F);
    if (version < 6) zone.erase(zone.begin() + 11);
    if (version < 4) zone.erase(zone.begin() + 10);
    StateBlock block = sampleBlock(zone, 1, {"Key \"1\""});
    block[0] = version;
    if (version < 5) block.resize(block.size() - 7);
    if (version < 2) block.resize(block.size() - 12);
    if (version == 1) block.back() = 7;
    return block;
}

constexpr std::int32_t kVersions[] = {0, 1, 2, 3, 4, 5, 6, 7};

struct Lacking {
    const char* place;
    int before;  ///< the version that first holds it
    const char* initial;
};

TEST(Settings, OfOlderBlocksHaveWhatANewShaderHas) {
    const Lacking fields[] = {{"/inkoverPaintColor", 2, "[0.0,0.0,0.0]"},
                              {"/inkoverObject", 2, "true"},
                              {"/maxTraceDepth", 2, "1"},
                              {"/lightPower", 2, "\"Linear\""},
                              {"/reserved[1]", 5, "0"},
                              {"/inkoverTranslucent", 5, "false"},
                              {"/zoneList/0/accountLightOpac", 4, "1.0"},
                              {"/zoneList/0/trans", 6, "0.0"}};
    const Settings whole = settingsOf(blockOfVersion(6));
    for (const std::int32_t version : kVersions) {
        const Settings settings = settingsOf(blockOfVersion(version));
        EXPECT_EQ(settings["forceColor"], version == 1 ? 1.0 : 0.75);
        for (const auto& [place, before, initial] : fields) {
            const Settings::json_pointer at(place);
            EXPECT_EQ(settings.at(at).dump(), version < before ? initial : whole.at(at).dump())
                << place << " in version " << version;
        }
    }
}

/// Numbers that are hard to keep: each a float by its bits.
constexpr std::uint32_t kHardNumbers[] = {
    0x7fc00000, 0xffc12345, 0x7f800000, 0xff800000,  // none, and infinite
    0x80000000, 0x00000001, 0x7f7fffff, 0x4b800000,  // -0, the smallest, the largest, 2^24
    0x60ad78ec,                                      // 1e20, which some write as an integer
    0x15ae43fd,  // 7.038531e-26: read as a double and then rounded, it is its neighbour
};

/// What other programs make of JSON: the same values, written another way.
Settings asIntegers(Settings items) {
    for (Settings& item : items) {
        if (!item.is_number_float()) continue;
        const auto number = item.get<double>();
        if (number == std::trunc(number) && std::abs(number) < 1e18)
            item = static_cast<std::int64_t>(number);
    }
    return items;
}

Settings asDoubles(Settings items) {
    for (Settings& item : items) {
        if (item.is_number()) item = static_cast<double>(item.get<float>());
    }
    return items;
}

/// The items as a scene file holds them.
Settings itemsOf(const StateBlock& block) {
    const Settings extras = Settings::parse(extrasWithShader({}, {"TAVO", true, block}));
    return extras["tavora"]["shaders"][0]["state"];
}

TEST(Settings, AreTheSameToTheBitHoweverTheyAreWritten) {
    std::vector<StateBlock> blocks;
    for (const std::int32_t version : kVersions)
        blocks.push_back(blockOfVersion(version));
    for (const std::uint32_t bits : kHardNumbers) {
        const auto value = std::bit_cast<float>(bits);
        StateBlock& block = blocks.emplace_back(sampleBlock(zoneItems(value, 7, value), 1));
        block[2] = block[4] = value;
        block[1] = std::int32_t{7};   // a switch that is neither on nor off
        block[7] = std::int32_t{-3};  // a choice that no label stands for
        EXPECT_TRUE(sameBits(blockOf(Settings::parse(settingsOf(block).dump())), block)) << value;
    }
    for (const StateBlock& block : blocks) {
        const Settings items = itemsOf(block);
        for (const Settings& written : {items, asIntegers(items), asDoubles(items)}) {
            const auto read = blockOfItems(Settings::parse(written.dump()));
            EXPECT_TRUE(read && sameBits(*read, block)) << written;
        }
    }
    EXPECT_EQ(settingsOf(blockOfVersion(6))["highlightSize"].dump(), "0.12") << "yet short";
}

TEST(Settings, OfADamagedBlockAreRefusedHoweverItIsWritten) {
    const StateBlock whole = sampleBlock();
    const auto saysOf = [](const Settings& items) {
        const auto block = blockOfItems(asIntegers(items));
        return block ? refusal([&] { settingsOf(*block); }) : "no block";
    };
    const Settings items = itemsOf(whole);
    Settings prefix = Settings::array();
    for (const Settings& item : items) {
        EXPECT_THAT(saysOf(prefix), HasSubstr("damaged: they end at")) << prefix;
        prefix.push_back(item);
    }
    prefix.push_back(5);
    prefix.push_back("more");
    EXPECT_EQ(saysOf(prefix), "") << "what follows a block is kept";
    EXPECT_EQ(blockOfItems(prefix)->size(), whole.size() + 2);
    const std::pair<std::size_t, std::pair<Settings, const char*>> cases[] = {
        {1, {0.5, "else at highlightOutlineEnable"}},
        {2, {"x", "else at highlightOutlineSize"}},
        {30, {1'000'001, "1000001 zoneList"}},
        {30, {2, "else at lightList"}},
        {2, {nullptr, "no block"}},
        {2, {1e300, "no block"}},
        {1, {2147483648, "no block"}},
        {2, {{{"float", "nil"}}, "no block"}},
    };
    for (const auto& [place, damage] : cases) {
        Settings damaged = items;
        damaged[place] = damage.first;
        EXPECT_THAT(saysOf(damaged), HasSubstr(damage.second));
    }
}

TEST(Settings, TakeWhatPeopleWrite) {
    const Settings settings = applied(R"({
        "highlightEnable": "on", "lightPower": 1, "edgeEnable": 0, "slopeEnable": "On",
        "edgeColor": "#ff8000", "slopeTopColor": [0, 0.5, 1], "edgeCoverage": 1,
        "lights": "Key", "maxTraceDepth": 5.0})");
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
        {R"({"edgeCoverage": {"float": "NaN"}})", "a number"},
        {R"({"edgeEnable": 2})", "true or false"},
        {R"({"highlightEnable": "Lights"})", R"(one of "Off", "On", "Light", not "Lights")"},
        {R"({"highlightEnable": 3})", "one of"},
        {R"({"edgeColor": "#ff80"})", "#rrggbb"},
        {R"({"edgeColor": "#gg0000"})", "#rrggbb"},
        {R"({"edgeColor": [1, 1]})", "#rrggbb"},
        {R"({"edgeColor": [1, 1, 2]})", "from 0 to 1, not 2"},
        {R"({"maxTraceDepth": 18446744073709551615})", "whole number"},
        {R"({"lights": [1]})", "light names"},
        {R"({"zones[3].color": "#ffffff"})", "no zones[3]; the last is zones[2]"},
        {R"({"zones[0": 1})", "unknown setting"},
        {R"({"zones[99999999999999999999].color": 1})", "unknown setting"},
        {R"([1])", "object"},
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
