#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "studio/scene/gltf/container.h"
#include "studio/scene/gltf/settings_writer.h"
#include "studio/scene/settings/shader_extras.h"
#include "tests/scene/gltf_builder.h"
#include "tests/scene/settings_samples.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

SurfaceShader sampleShader() {
    return {"TAVO", true, {6, 0.1F, "Key \"1\"", -3, 1.0F, 1e20F}};
}

const std::string kSampleText =
    R"({"server":"TAVO","enabled":true,"state":[6,0.1,"Key \"1\"",-3,1.0,1e+20]})";

std::optional<SurfaceShader> read(const std::string& extras) {
    std::vector<std::string> warnings;
    std::optional<SurfaceShader> shader = shaderFromExtras(Json::parse(extras), "here", warnings);
    EXPECT_TRUE(warnings.empty()) << extras;
    return shader;
}

TEST(ShaderExtras, ChangeNothingElse) {
    const std::string own = R"({"shaders":[)" + kSampleText + "]}";
    const std::pair<std::string, std::string> cases[] = {
        {"", R"({"tavora":)" + own + "}"},
        {"{ }", R"({"tavora":)" + own + " }"},
        {R"({ "a": 1e3, "b":[ 0.10, 123456789012345678901 ] })",
         R"({ "a": 1e3, "b":[ 0.10, 123456789012345678901 ],"tavora":)" + own + " }"},
        {R"({"tavora": {"x": 1.50}, "z": 0})",
         R"({"tavora": {"x": 1.50,"shaders":[)" + kSampleText + R"(]}, "z": 0})"},
        {R"({"t\u0061vora": 5})", R"({"t\u0061vora": )" + own + "}"},
        {R"({"tavora":{"shaders":[{"server":"MINE","state":[1.50]},
            {"note": 1.0e0, "server":"TAVO","enabled":false,"state":[]}]}})",
         R"({"tavora":{"shaders":[{"note": 1.0e0, "server":"TAVO","enabled":true,)"
         R"("state":[6,0.1,"Key \"1\"",-3,1.0,1e+20]},{"server":"MINE","state":[1.50]}]}})"},
    };
    for (const auto& [before, after] : cases) {
        EXPECT_EQ(extrasWithShader(before, sampleShader()), after) << before;
        EXPECT_EQ(extrasWithShader(after, sampleShader()), after) << before;
        EXPECT_EQ(read(after), sampleShader());
    }
    SurfaceShader off = sampleShader();
    off.enabled = false;
    EXPECT_EQ(read(extrasWithShader("null", off)), off);
    EXPECT_THAT(refusal([] { extrasWithShader("[1]", sampleShader()); }), HasSubstr("no shader"));
}

TEST(ShaderExtras, LeaveOutWhatIsDamagedAndSaySoOnce) {
    const auto expectNone = [](const std::string& extras, std::size_t warned) {
        std::vector<std::string> warnings;
        EXPECT_FALSE(shaderFromExtras(Json::parse(extras), "here", warnings)) << extras;
        ASSERT_EQ(warnings.size(), warned) << extras;
        EXPECT_THAT(warnings, testing::Each(testing::StartsWith("here: ")));
    };
    for (const char* entry :
         {"1", R"({"server": "TAVO"})", R"({"state": []})", R"({"server": 1, "state": []})",
          R"({"server": "TAVO", "enabled": 1, "state": []})",
          R"({"server": "TAVO", "state": [6, null]})"})
        expectNone(R"({"tavora": {"shaders": [)" + std::string(entry) + "]}}", 1);
    expectNone(R"({"tavora": 1})", 1);
    expectNone(R"({"tavora": {"shaders": {}}})", 1);
    for (const char* extras :
         {"null", "[]", "{}", R"({"tavora": {"ambient": 1}})", R"({"tavora": {"shaders": []}})"})
        expectNone(extras, 0);
}

const std::string kDocument =
    "{ \"asset\" : {\"version\":\"2.0\"},\n\t\"big\": 12345678901234567890123, \"e\": 1e3,\n"
    " \"materials\": [ {\"name\":\"]\\\"{\"}, { }, {\"name\":\"c\", \"extras\":{\"k\":[1.10]}} ],\n"
    " \"z\": 0.1}\n";

TEST(GltfSettings, ChangeExtrasAloneInText) {
    const TemporaryFolder folder;
    for (const std::string mark : {"", "\xef\xbb\xbf"}) {
        putBytes(folder / "a.gltf", mark + kDocument);
        writeGltfSettings(folder / "a.gltf", folder / "b.gltf",
                          {{0, sampleShader()}, {2, sampleShader()}});
        const std::string own = R"("tavora":{"shaders":[)" + kSampleText + "]}";
        std::string expected = mark + kDocument;
        expected.replace(expected.find("\"}, { }"), 2, "\",\"extras\":{" + own + "}}");
        expected.replace(expected.find("1.10]}"), 6, "1.10]," + own + "}");
        EXPECT_EQ(bytesOf(folder / "b.gltf"), expected);
    }
}

TEST(GltfSettings, CopyEveryOtherChunkOfAGlb) {
    const TemporaryFolder folder;
    const std::string chunks = GltfBuilder::word(4) + "MINE" + "abcd";
    const auto bytesWith = [&](const std::string& json) {
        std::string bytes = GltfBuilder::glb(json, "\1\2\3    ") + chunks;
        return bytes.replace(8, 4, GltfBuilder::word(bytes.size()));
    };
    putBytes(folder / "a.glb", bytesWith(kDocument));
    writeGltfSettings(folder / "a.glb", folder / "a.glb", {{1, sampleShader()}});
    const GltfContainer container = readContainer(folder / "a.glb");
    EXPECT_EQ(bytesOf(folder / "a.glb"), bytesWith(container.json));
    const Json document = Json::parse(container.json);
    EXPECT_EQ(read(document["materials"][1]["extras"].dump()), sampleShader());
}

TEST(GltfSettings, SayWhatCannotBeStored) {
    const TemporaryFolder folder;
    const auto store = [&](const std::string& document, const char* to, int material) {
        putBytes(folder / "a.gltf", document);
        return refusal([&] {
            writeGltfSettings(folder / "a.gltf", folder / to, {{material, sampleShader()}});
        });
    };
    fs::create_directory(folder / "sub");
    const std::string relative =
        R"({"materials":[{}],"buffers":[{"uri":"data:x"},{"uri":"x.bin"}]})";
    const std::string inside = R"({"materials":[{}],"buffers":[{"uri":"data:x"}]})";
    EXPECT_THAT(store(relative, "sub/b.gltf", 0), HasSubstr("refers to x.bin"));
    EXPECT_EQ(store(relative, "b.gltf", 0), "");
    EXPECT_EQ(store(inside, "sub/b.gltf", 0), "");
    EXPECT_THAT(store(inside, "b.glb", 0), HasSubstr("must end in .gltf"));
    EXPECT_THAT(store(inside, "b.gltf", 1), HasSubstr("no material 1"));
    EXPECT_THAT(store(inside, "b.gltf", -1), HasSubstr("no material -1"));
    for (const char* document : {R"({"materials":5})", R"({"materials":[5]})"})
        EXPECT_THAT(store(document, "b.gltf", 0), HasSubstr("no material 0"));
    EXPECT_THAT(store(R"({"materials":[{"extras":5}]})", "b.gltf", 0), HasSubstr("material 0: "));
    EXPECT_THAT(store("[", "b.gltf", 0), HasSubstr("a.gltf:1:2: not valid JSON"));
    EXPECT_THAT(store("5", "b.gltf", 0), HasSubstr("no glTF document"));
    EXPECT_THROW(writeGltfSettings(folder / "a.gltf", folder / "none/b.gltf", {}), Error);
}

}  // namespace
}  // namespace tavora::studio
