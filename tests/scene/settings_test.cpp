// The settings of a shader: their values, in looks, and in scenes that otherwise stay as they are.

#include "studio/scene/settings/settings.h"

#include <bit>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "persist/stored_fields.h"
#include "studio/scene/gltf/container.h"
#include "studio/scene/gltf/settings_writer.h"
#include "studio/scene/settings/look.h"
#include "studio/scene/settings/shader_extras.h"
#include "tests/files/temporary_folder.h"
#include "tests/scene/gltf_builder.h"
#include "tests/scene/settings_samples.h"
#include "tests/support/refusal.h"

namespace tavora::studio {
namespace {

using testing::ElementsAre, testing::HasSubstr;

Settings applied(const std::string& changes) {
    return settingsOf(withChanges(sampleBlock(), Settings::parse(changes), "here", {}));
}

/// Expects these values, to the digit that is written.
void expectValues(const Settings& settings, const std::string& expected) {
    const Settings values = Settings::parse(expected);
    for (const auto& one : values.items())
        EXPECT_EQ(settings.at(Settings::json_pointer(one.key())).dump(), one.value().dump());
}

TEST(Settings, NameEveryValueOfABlockAndTakeWhatPeopleWrite) {
    const Settings settings = settingsOf(sampleBlock());
    EXPECT_EQ(settings.size(), std::size(storedFields));
    expectValues(settings, R"({"/highlightOutlineEnable": false, "/highlightEnable": "Light",
        "/slopeCenter": 0.65, "/highlightSize": 0.12, "/slopeTopColor": [1.0, 0.99, 0.98],
        "/lightPower": "Cubed", "/reserved[1]": -8, "/lightList": ["Key", "F\u00fcll"],
        "/zoneList/1": {"color": [0.25, 0.5, 0.75], "position": 0.5, "opacity": 1.0,
            "blend": true, "bright": 0.9, "sat": 0.8, "reserved": 0, "accountLights": true,
            "accountLightOpac": 0.7, "trans": 0.0, "accountLume": false}})");
    const Settings written = applied(R"({
        "highlightEnable": "on", "lightPower": 1, "edgeEnable": "off", "slopeEnable": "On",
        "edgeColor": "#ff8000", "slopeTopColor": [0, 0.5, 1], "edgeCoverage": 1,
        "lights": "Key", "maxTraceDepth": 5.0})");
    expectValues(written, R"({"/highlightEnable": "On", "/lightPower": "Squared",
        "/edgeEnable": false, "/slopeEnable": true, "/edgeColor": [1.0, 0.5019608, 0.0],
        "/slopeTopColor": [0.0, 0.5, 1.0], "/edgeCoverage": 1.0, "/lightList": ["Key"]})");
    EXPECT_EQ(blockOf(written).size(), sampleBlock().size() - 1);
    expectValues(applied(R"({"zones[1].opacity": 0.25, "zoneList[0].color": "#ffffff"})"), R"({
        "/zoneList/1/opacity": 0.25, "/zoneList/1/bright": 0.9, "/zoneList/0/color": [1.0, 1.0, 1.0]})");
    expectValues(applied(R"({"zones": [{"position": 1}, {"position": 0.5, "blend": true},
                                       {"position": 0, "trans": 0.5}]})"),
                 R"({"/zoneList/0/trans": 0.5, "/zoneList/1/blend": true,
                     "/zoneList/2/position": 1.0, "/zoneList/2/color": [0.3, 0.5, 0.7],
                     "/zoneList/2/accountLightOpac": 1.0})");
    for (const char* wrong :
         {R"({"edgeColor": [1, 2]})", R"({"edgeColor": 1})", R"({"zoneList": 1})",
          R"({"lightList": [1]})", R"({"edgeCoverage": "1"})"}) {
        Settings changed = settingsOf(sampleBlock());
        changed.update(Settings::parse(wrong));
        EXPECT_THAT(refusal([&] { blockOf(changed); }), HasSubstr("the kind that is stored"));
    }
}

/// The items as a scene file holds them.
Settings itemsOf(const StateBlock& block) {
    const Settings extras = Settings::parse(extrasWithShader({}, {"TAVO", true, block}));
    return extras["tavora"]["shaders"][0]["state"];
}

TEST(Settings, AreTheSameToTheBit) {
    // Numbers that are hard to keep: none, infinite, -0, the smallest, the largest, 2^24, 1e20 that
    // some write as an integer, and 7.038531e-26 that as a double is rounded to its neighbour.
    for (const std::uint32_t bits :
         {0x7fc00000U, 0xffc12345U, 0x7f800000U, 0xff800000U, 0x80000000U, 1U, 0x7f7fffffU,
          0x4b800000U, 0x60ad78ecU, 0x15ae43fdU}) {
        const auto value = std::bit_cast<float>(bits);
        StateBlock block = sampleBlock(zoneItems(value, 7, value), 1);
        block[2] = block[4] = value;
        block[1] = std::int32_t{7};   // a switch that is neither on nor off
        block[7] = std::int32_t{-3};  // a choice that no label stands for
        EXPECT_TRUE(sameBits(blockOf(Settings::parse(settingsOf(block).dump())), block)) << value;
        const auto read = blockOfItems(Settings::parse(itemsOf(block).dump()));
        EXPECT_TRUE(read && sameBits(*read, block)) << itemsOf(block);
    }
    EXPECT_EQ(itemsOf({-0.0F}).dump(), R"([{"float":"0x80000000"}])") << "others write 0 for -0.0";
    StateBlock old = sampleBlock({}, 0);
    old[0] = 1;
    old.resize(old.size() - 19);
    old.back() = 7;
    EXPECT_EQ(settingsOf(old)["forceColor"], 1.0) << "a flag in version 1";
}

TEST(Settings, OfADamagedBlockAreRefused) {
    const auto saysOf = [](const Settings& items) {
        const auto block = blockOfItems(items);
        return block ? refusal([&] { settingsOf(*block); }) : "no block";
    };
    const Settings items = itemsOf(sampleBlock());
    Settings prefix = Settings::array();
    for (const Settings& item : items) {
        EXPECT_THAT(saysOf(prefix), HasSubstr("damaged: they end at")) << prefix;
        prefix.push_back(item);
    }
    prefix.push_back("more");
    EXPECT_EQ(saysOf(prefix), "") << "what follows a block is kept";
    EXPECT_EQ(blockOfItems(prefix)->size(), items.size() + 1);
    const Json cases = R"([[1, 0.5, "else at highlightOutlineEnable"], [30, 2, "else at lightList"],
        [2, "x", "else at highlightOutlineSize"], [30, 1000001, "1000001 zoneList"],
        [2, null, "no block"], [2, 1e300, "no block"], [1, 2147483648, "no block"],
        [2, {"float": "nil"}, "no block"]])"_j;
    for (const Json& damage : cases) {
        Settings damaged = items;
        damaged[damage[0].get<std::size_t>()] = damage[1];
        EXPECT_THAT(saysOf(damaged), HasSubstr(damage[2])) << damage;
    }
}

TEST(Settings, SayWhatIsWrongWithAValue) {
    const Json cases = R"([
        [{"zones[0].birght": 1}, "zones[0]: unknown setting \"birght\"; did you mean bright"],
        [{"edgeCoverage": -1}, "here: edgeCoverage must be a number from 0 to 1, not -1"],
        [{"highlightEnable": "Lights"}, "one of \"Off\", \"On\", \"Light\", not \"Lights\""],
        [{"edgeColor": "#ff80"}, "#rrggbb"], [{"edgeColor": "#gg0000"}, "#rrggbb"],
        [{"edgeColor": [1, 1]}, "#rrggbb"], [{"edgeEnable": 2}, "true or false"],
        [{"maxTraceDepth": 18446744073709551615}, "whole number"], [[1], "object"],
        [{"zones[3].color": "#ffffff"}, "no zones[3]; the last is zones[2]"],
        [{"zones[99999999999999999999].color": 1}, "unknown setting"],
        [{"zones": [{"position": 0}]}, "two zones"], [{"lights": [1]}, "light names"],
        [{"zones": [{"position": 0}, {"position": 0.5, "blend": true}]}, "be ordinary"],
        [{"zones[1].position": 1, "zones[0].blend": true}, "be ordinary"],
        [{"zones": [{"position": 0}, {"position": 0.4, "blend": 1}, {"position": 0.5, "blend": true},
                    {"position": 1}]}, "zones 1 and 2"],
        [{"zones": [{"color": "#ffffff"}, {"position": 1}]}, "position"]])"_j;
    for (const Json& wrong : cases)
        EXPECT_THAT(refusal([&] { applied(wrong[0].dump()); }), HasSubstr(wrong[1])) << wrong;
    const std::string name(80, 'x');
    EXPECT_THAT(refusal([&] { applied(R"({"lights": [")" + name + "\"]}"); }),
                HasSubstr("79 bytes"));
}

TEST(Settings, ChangesAreSettledWithTheLightsAtHand) {
    const std::vector<std::string> scene{"Key", "Rim"};
    const auto lightsWith = [&](const Settings& lights) {
        return withChanges(sampleBlock(), {{"lights", lights}}, "here", scene);
    };
    EXPECT_EQ(settingsOf(lightsWith("all"))["lightList"].dump(), R"(["Key","Rim"])");
    EXPECT_THAT(unknownLights(lightsWith({"Rim", "Fill", "Ambient"}), scene), ElementsAre("Fill"));
}

// A look with `settings` on its second line.
std::string lookText(const std::string& settings) {
    return "{\"tavora\": \"look\", \"version\": 1, \"description\": \"D\",\n \"settings\": " +
           settings + "}\n";
}

TEST(Look, ReadsAFileInTheFormOfSettings) {
    const TemporaryFolder folder;
    putBytes(folder / "a.json",
             "\xef\xbb\xbf" + lookText(R"({"edgeColor": "#00ff00", "slopeStyle": 1})"));
    const Look look = readLook(folder / "a.json");
    EXPECT_TRUE(look.name == "a" && look.description == "D");
    EXPECT_EQ(look.settings.dump(), R"({"edgeColor":[0.0,1.0,0.0],"slopeStyle":"Step"})");
}

TEST(Look, SaysWhereItIsWrong) {
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    const std::pair<std::string, const char*> cases[] = {
        {"", "look.json:1:1: not valid JSON"},
        {"[]", "must be a JSON object"},
        {R"({"version": 1})", "has no \"tavora\""},
        {R"({"tavora": "scene"})", "look.json:1:12: this is not a look"},
        {R"({"tavora": "look", "version": 2})", "look.json:1:31: looks of version 2"},
        {R"({"tavora": "look", "version": 1, "settings": {}, "descripton": ""})",
         "did you mean description"},
        {lookText("[]"), "look.json:2:14: \"settings\" must be an object"},
        {lookText("{\"edgeEnable\": true,\n \"edgeEnable\": false}"),
         "look.json:3:2: \"edgeEnable\" stands here again"},
        {lookText(R"({"zones[0].color": "#ffffff"})"), "give the whole list"},
        {lookText("{\"zones\": " + deep + "}"), "nested deeper than 128"}};
    for (const auto& [text, says] : cases)
        EXPECT_THAT(refusal([&, &text = text] { parseLook(text, "look.json"); }), HasSubstr(says));
}

SurfaceShader sampleShader() {
    return {"TAVO", true, {6, 0.1F, "Key \"1\"", -3, 1.0F, 1e20F}};
}

const std::string kSample =
    R"("shaders":[{"server":"TAVO","enabled":true,"state":[6,0.1,"Key \"1\"",-3,1.0,1e+20]})";

/// Expects as many warnings, each of the place.
std::optional<SurfaceShader> read(const std::string& extras, std::size_t warned = 0) {
    std::vector<std::string> warnings;
    std::optional<SurfaceShader> shader = shaderFromExtras(Json::parse(extras), "here", warnings);
    EXPECT_EQ(warnings.size(), warned) << extras;
    EXPECT_THAT(warnings, testing::Each(testing::StartsWith("here: ")));
    return shader;
}

TEST(ShaderExtras, ChangeNothingElse) {
    const std::pair<std::string, std::string> cases[] = {
        {"", R"({"tavora":{)" + kSample + "]}}"},
        {"{ }", R"({"tavora":{)" + kSample + "]} }"},
        {R"({ "a": 1e3, "b":[ 0.10, 123456789012345678901 ] })",
         R"({ "a": 1e3, "b":[ 0.10, 123456789012345678901 ],"tavora":{)" + kSample + "]} }"},
        {R"({"tavora": {"x": 1.50}, "z": 0})",
         R"({"tavora": {"x": 1.50,)" + kSample + R"(]}, "z": 0})"},
        {R"({"t\u0061vora": 5})", R"({"t\u0061vora": {)" + kSample + "]}}"},
        {R"({"tavora":{"shaders":[{"server":"MINE","state":[1.50]},
            {"server":"TAVO","enabled":false,"state":[]}]}})",
         R"({"tavora":{)" + kSample + R"(,{"server":"MINE","state":[1.50]}]}})"},
    };
    for (const auto& [before, after] : cases) {
        EXPECT_EQ(extrasWithShader(before, sampleShader()), after) << before;
        EXPECT_EQ(extrasWithShader(after, sampleShader()), after) << before;
        EXPECT_EQ(read(after), sampleShader());
    }
    EXPECT_FALSE(read(extrasWithShader("null", {"TAVO", false, {}}))->enabled);
    EXPECT_TRUE(read(R"({"tavora": {"shaders": [{"server": "A", "state": []}]}})")->enabled);
}

TEST(ShaderExtras, LeaveOutWhatIsDamagedAndSaySoOnce) {
    for (const Json& own : R"([1, {"shaders": {}}, {"shaders": [1]}, {"shaders": [{"server": "A"}]},
             {"shaders": [{"server": 1, "state": []}]}, {"shaders": [{"state": []}]},
             {"shaders": [{"server": "A", "enabled": 1, "state": []}]},
             {"shaders": [{"server": "A", "state": [6, null]}]}])"_j)
        EXPECT_FALSE(read(Json{{"tavora", own}}.dump(), 1));
    for (const Json& none : R"([null, [], {"tavora": {}}, {"tavora": {"shaders": []}}])"_j)
        EXPECT_FALSE(read(none.dump()));
}

const std::string kDocument =
    "{ \"asset\" : {\"version\":\"2.0\"},\n\t\"big\": 12345678901234567890123, \"e\": 1e3,\n"
    " \"materials\": [ {\"name\":\"]\\\"{\"}, { }, {\"name\":\"c\", \"extras\":{\"k\":[1.10]}} ],\n"
    " \"z\": 0.1}\n";

TEST(GltfSettings, ChangeExtrasAloneInTextAndCopyEveryOtherChunkOfAGlb) {
    const TemporaryFolder folder;
    std::string expected = "\xef\xbb\xbf" + kDocument;
    putBytes(folder / "a.gltf", expected);
    const SurfaceShader shader = sampleShader();
    writeGltfSettings(folder / "a.gltf", folder / "b.GLTF", {{0, shader}, {2, shader}});
    const std::string own = R"("tavora":{)" + kSample + "]}";
    expected.replace(expected.find("\"}, { }"), 2, "\",\"extras\":{" + own + "}}");
    expected.replace(expected.find("1.10]}"), 6, "1.10]," + own + "}");
    EXPECT_EQ(bytesOf(folder / "b.GLTF"), expected);

    const auto bytesWith = [&](const std::string& json) {
        std::string bytes =
            GltfBuilder::glb(json, "\1\2\3    ") + GltfBuilder::word(4) + "MINEabcd";
        return bytes.replace(8, 4, GltfBuilder::word(bytes.size()));
    };
    putBytes(folder / "a.glb", bytesWith(kDocument));
    writeGltfSettings(folder / "a.glb", folder / "a.glb", {{1, shader}});
    const GltfContainer container = readContainer(folder / "a.glb");
    EXPECT_EQ(bytesOf(folder / "a.glb"), bytesWith(container.json));
    EXPECT_THAT(container.json, HasSubstr("{\"extras\":{" + own + "} }"));
}

TEST(GltfSettings, SayWhatCannotBeStored) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "sub");
    const std::string beside = R"({"materials":[{}],"images":[{"uri":"data:x"},{"uri":"x.bin"}]})";
    const std::string inside = R"({"materials":[{}],"buffers":[{"uri":"data:x"}]})";
    const std::tuple<std::string, const char*, int, const char*> cases[] = {
        {beside, "sub/b.gltf", 0, "refers to x.bin"},
        {beside, "b.gltf", 0, ""},
        {inside, "sub/b.gltf", 0, ""},
        {inside, "b.glb", 0, "must end in .gltf"},
        {inside, "b.gltf", 1, "no material 1"},
        {inside, "b.gltf", -1, "no material -1"},
        {R"({"materials":5})", "b.gltf", 0, "no material 0"},
        {R"({"materials":[5]})", "b.gltf", 0, "no material 0"},
        {R"({"materials":[{"extras":5}]})", "b.gltf", 0, "material 0: its extras are not a"},
        {"[", "b.gltf", 0, "a.gltf:1:2: not valid JSON"},
        {"5", "b.gltf", 0, "no glTF document"}};
    for (const auto& [document, to, material, says] : cases) {
        putBytes(folder / "a.gltf", document);
        const std::string line = refusal([&, &to = to, &material = material] {
            writeGltfSettings(folder / "a.gltf", folder / to, {{material, sampleShader()}});
        });
        EXPECT_THAT(line, HasSubstr(says)) << document;
        EXPECT_EQ(line.empty(), *says == 0) << document;
    }
}

}  // namespace
}  // namespace tavora::studio
