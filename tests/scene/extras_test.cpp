#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "studio/files/output_error.h"
#include "studio/scene/gltf_container.h"
#include "studio/scene/gltf_settings.h"
#include "studio/scene/json_text.h"
#include "studio/scene/shader_extras.h"
#include "tests/files/temporary_folder.h"
#include "tests/scene/settings_samples.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;

StoredShader sampleShader() {
    return {"TAVO", true, {6, 0.1F, "Key \"1\"", -3, 1.0F, 1e20F}};
}

const std::string kSampleText =
    R"({"server":"TAVO","enabled":true,"state":[6,0.1,"Key \"1\"",-3,1.0,1e+20]})";

StoredShader read(const std::string& extras) {
    std::vector<std::string> warnings;
    const auto shader = shaderFromExtras(Json::parse(extras), "here", warnings);
    EXPECT_TRUE(shader && warnings.empty()) << extras;
    return shader.value_or(StoredShader{});
}

TEST(ShaderExtras, ReturnWhatWasStored) {
    StoredShader shader = sampleShader();
    shader.enabled = false;
    const StoredShader again = read(extrasWithShader("", shader));
    EXPECT_EQ(again.server, shader.server);
    EXPECT_EQ(again.enabled, shader.enabled);
    EXPECT_EQ(again.state, shader.state);
    shader.state = sampleBlock();
    EXPECT_EQ(read(extrasWithShader("{}", shader)).state, shader.state);
    shader.state = {INT32_MIN, INT32_MAX};
    EXPECT_EQ(read(extrasWithShader("null", shader)).state, shader.state);
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
    }
    EXPECT_THAT(refusal([] { extrasWithShader("[1]", sampleShader()); }), HasSubstr("no shader"));
}

TEST(ShaderExtras, LeaveOutWhatIsDamagedAndSaySoOnce) {
    const char* const damaged[] = {
        R"({"tavora": 1})",
        R"({"tavora": {"shaders": {}}})",
        R"({"tavora": {"shaders": [1]}})",
        R"({"tavora": {"shaders": [{"server": "TAVO"}]}})",
        R"({"tavora": {"shaders": [{"state": []}]}})",
        R"({"tavora": {"shaders": [{"server": 1, "state": []}]}})",
        R"({"tavora": {"shaders": [{"server": "TAVO", "enabled": 1, "state": []}]}})",
        R"({"tavora": {"shaders": [{"server": "TAVO", "state": [null]}]}})",
        R"({"tavora": {"shaders": [{"server": "TAVO", "state": [2147483648]}]}})",
        R"({"tavora": {"shaders": [{"server": "TAVO", "state": [18446744073709551615]}]}})",
        R"({"tavora": {"shaders": [{"server": "TAVO", "state": [1e300]}]}})",
        R"({"tavora": {"shaders": [{"server": "TAVO", "state": [{"float": "nil"}]}]}})",
    };
    for (const char* extras : damaged) {
        std::vector<std::string> warnings;
        EXPECT_FALSE(shaderFromExtras(Json::parse(extras), "here", warnings)) << extras;
        ASSERT_EQ(warnings.size(), 1U) << extras;
        EXPECT_THAT(warnings[0], testing::StartsWith("here: "));
    }
    for (const char* extras :
         {"null", "[]", "{}", R"({"tavora": {"ambient": 1}})", R"({"tavora": {"shaders": []}})"}) {
        std::vector<std::string> warnings;
        EXPECT_FALSE(shaderFromExtras(Json::parse(extras), "here", warnings)) << extras;
        EXPECT_TRUE(warnings.empty()) << extras;
    }
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

std::string word(std::size_t value) {
    std::string bytes;
    for (int i = 0; i < 4; ++i)
        bytes += static_cast<char>((value >> (8 * i)) & 0xff);
    return bytes;
}

std::string glb(std::string json, const std::string& chunks) {
    while (json.size() % 4 != 0)
        json += ' ';
    return "glTF" + word(2) + word(20 + json.size() + chunks.size()) + word(json.size()) + "JSON" +
           json + chunks;
}

TEST(GltfSettings, CopyEveryOtherChunkOfAGlb) {
    const TemporaryFolder folder;
    const std::string chunks = word(8) + std::string("BIN\0", 4) + std::string("\0\1\2\3    ", 8) +
                               word(4) + "MINE" + "abcd";
    putBytes(folder / "a.glb", glb(kDocument, chunks));
    writeGltfSettings(folder / "a.glb", folder / "a.glb", {{1, sampleShader()}});
    const std::string bytes = bytesOf(folder / "a.glb");
    EXPECT_EQ(bytes.size() % 4, 0U);
    EXPECT_TRUE(bytes.ends_with(chunks));
    const GltfContainer container = readContainer(folder / "a.glb");
    EXPECT_EQ(bytes, glb(container.json, chunks));
    const Json document = Json::parse(container.json);
    EXPECT_EQ(read(document["materials"][1]["extras"].dump()).state, sampleShader().state);
}

TEST(GltfSettings, RefuseWhatIsNoWholeGlb) {
    const TemporaryFolder folder;
    const std::string whole = glb("{\"materials\":[{}]}", "");
    std::string wrongVersion = whole;
    wrongVersion[4] = 1;
    std::string wrongChunk = whole;
    wrongChunk[16] = 'X';
    std::string hugeChunk = whole;
    hugeChunk.replace(12, 4, word(0xffffffff));
    for (const std::string& bytes : {whole.substr(0, 10), whole.substr(0, 30), wrongVersion,
                                     wrongChunk, hugeChunk, glb("{\"materials\":[{}]", "")}) {
        putBytes(folder / "a.glb", bytes);
        EXPECT_FALSE(
            refusal([&] {
                writeGltfSettings(folder / "a.glb", folder / "b.glb", {{0, sampleShader()}});
            }).empty());
    }
    EXPECT_EQ(folder.names(), std::set<std::string>{"a.glb"});
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
    EXPECT_THAT(store(R"({"materials":5})", "b.gltf", 0), HasSubstr("no material 0"));
    EXPECT_THAT(store(R"({"materials":[5]})", "b.gltf", 0), HasSubstr("no material 0"));
    EXPECT_THAT(store(R"({"materials":[{"extras":5}]})", "b.gltf", 0), HasSubstr("material 0: "));
    EXPECT_THAT(store("[", "b.gltf", 0), HasSubstr("a.gltf:1:2: not valid JSON"));
    EXPECT_THAT(store("5", "b.gltf", 0), HasSubstr("no glTF document"));
    EXPECT_THROW(writeGltfSettings(folder / "a.gltf", folder / "none/b.gltf", {}), SceneError);
}

/// Model files to try, when the machine has them.
std::vector<fs::path> modelFiles() {
    std::vector<fs::path> files;
    std::error_code none;
    for (const auto& entry : fs::recursive_directory_iterator(TAVORA_MODELS, none)) {
        const fs::path suffix = entry.path().extension();
        if (suffix == ".glb" || suffix == ".gltf") files.push_back(entry.path());
    }
    return files;
}

TEST(GltfSettings, RealModelsKeepAllButTheirExtras) {
    const std::vector<fs::path> files = modelFiles();
    if (files.empty()) GTEST_SKIP() << "no models in " TAVORA_MODELS;
    for (const fs::path& file : files) {
        const TemporaryFolder folder;
        const fs::path input = folder / file.filename();
        const fs::path output = folder / ("out" + file.extension().string());
        fs::copy_file(file, input);
        const GltfContainer before = readContainer(input);
        const Json document = Json::parse(before.json);
        const Json materials = document.value("materials", Json::array());
        std::map<int, StoredShader> shaders;
        for (std::size_t i = 0; i < materials.size(); ++i) {
            shaders[static_cast<int>(i)] = sampleShader();
        }
        writeGltfSettings(input, output, shaders);
        const GltfContainer after = readContainer(output);
        EXPECT_EQ(after.chunks, before.chunks) << file;
        Json patched = Json::parse(after.json);
        for (const auto& [index, shader] : shaders) {
            Json& extras = patched["materials"][static_cast<std::size_t>(index)]["extras"];
            EXPECT_EQ(read(extras.dump()).state, shader.state) << file;
            extras.erase("tavora");
            if (!materials[static_cast<std::size_t>(index)].contains("extras")) {
                patched["materials"][static_cast<std::size_t>(index)].erase("extras");
            }
        }
        EXPECT_EQ(patched, document) << file;
    }
}

}  // namespace
}  // namespace tavora::studio
