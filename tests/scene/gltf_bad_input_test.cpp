// Files that cannot be read: each is refused in one line that names the file
// and the place and says what to do.

#include <cmath>
#include <ctime>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

#include "studio/scene/gltf/document_reader.h"
#include "tests/scene/full_scene.h"

namespace tavora::studio {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

/// Expects one line about `file` with `says` in it.
void expectRefused(const std::filesystem::path& file, const std::string& says,
                   const std::string& what) {
    const std::string line = refusalOf(file);
    EXPECT_THAT(line, HasSubstr(file.filename().string())) << what;
    EXPECT_THAT(line, HasSubstr(says)) << what;
    EXPECT_THAT(line, Not(HasSubstr("\n"))) << what;
    const std::string afterPath = line.substr(std::min(line.size(), file.string().size()));
    EXPECT_THAT(afterPath, testing::ContainsRegex("[:;,] [a-z]")) << what << ": no advice";
}

struct Container {
    const char* what;
    std::string bytes;
    const char* says;
};

TEST(GltfBadInput, FilesThatAreNotGltf) {
    const std::string json = R"({"asset": {"version": "2.0"}})";
    const std::string whole = GltfBuilder::glb(json, "1234");
    std::string otherVersion = whole;
    otherVersion[4] = 1;
    std::string otherType = whole;
    otherType.replace(16, 4, "XXXX");
    std::string longChunk = whole;
    longChunk.replace(12, 4, "\xff\xff\xff\x7f");
    std::string longBinary = whole;
    longBinary.replace(whole.size() - 12, 4, "\xff\xff\xff\x7f");
    const Container cases[] = {
        {"empty", "", "is empty"},
        {"text", "hello", "not valid JSON"},
        {"a list", "[1, 2]", "is not glTF"},
        {"an object of something else", R"({"a": 1})", "is not glTF"},
        {"truncated", R"({"asset": {"version": "2.0")", "not valid JSON"},
        {"the old version", R"({"asset": {"version": "1.0"}})", "is glTF 1.0"},
        {"a version of another type", R"({"asset": {"version": 2.0}})", "is not glTF"},
        {"a newline in the version", "{\"asset\": {\"version\": \"1\\n2\"}}", "is glTF 1 2"},
        {"a number beyond all", R"({"asset": {"version": "2.0"}, "scene": 1e999})", "number"},
        {"bytes that are not UTF-8", "{\"asset\": {\"version\": \"\xff\"}}", "not valid JSON"},
        {"deep lists", std::string(100000, '['), "nested deeper"},
        {"deep objects in place",
         [] {
             std::string deep = R"({"asset": {"version": "2.0"}, "extras": )";
             for (int i = 0; i < 100000; ++i)
                 deep += R"({"a":)";
             return deep + "1" + std::string(100001, '}');
         }(),
         "nested deeper"},
        {"a lone header", whole.substr(0, 12), "truncated"},
        {"half a .glb", whole.substr(0, whole.size() / 2), "truncated"},
        {"all but a word", whole.substr(0, whole.size() - 4), "truncated"},
        {"a .glb of another version", otherVersion, "another version than 2"},
        {"another chunk first", otherType, "JSON chunk"},
        {"a JSON chunk past the end", longChunk, "JSON chunk"},
        {"a binary chunk past the end", longBinary, "binary chunk is truncated"},
    };
    for (const Container& c : cases) {
        const TemporaryFolder folder;
        putBytes(folder / "odd.gltf", c.bytes);
        expectRefused(folder / "odd.gltf", c.says, c.what);
    }
}

TEST(GltfBadInput, PathsThatAreNoFile) {
    const TemporaryFolder folder;
    expectRefused(folder / "none.gltf", "No such file", "missing");
    std::filesystem::create_directory(folder / "dir.gltf");
    expectRefused(folder / "dir.gltf", "directory", "a folder");
}

/// A change to a whole scene that must make it unreadable.
struct Change {
    const char* at;  ///< JSON pointer; "-" as the last token erases
    std::string value;
    const char* says;
};

TEST(GltfBadInput, TheSceneThatIsChangedBelowReads) {
    const Scene scene = fullScene().read();
    EXPECT_EQ(scene.objects.size(), 1U);
    EXPECT_EQ(scene.lights.size(), 1U);
    EXPECT_EQ(scene.cameras.size(), 1U);
    EXPECT_EQ(scene.animations.at(0).end, 1);
}

void expectChangesRefused(const std::vector<Change>& changes) {
    for (const Change& change : changes) {
        GltfBuilder file = fullScene();
        const Json::json_pointer at(change.at);
        if (change.value.empty()) {
            file.document.at(at.parent_pointer()).erase(at.back());
        } else {
            file.document[at] = Json::parse(change.value);
        }
        const TemporaryFolder folder;
        expectRefused(file.write(folder), change.says, change.at + (" = " + change.value));
    }
}

/// "nodes[0].mesh" for "/nodes/0/mesh".
std::string placeOf(const std::string& pointer) {
    std::string place;
    std::istringstream tokens(pointer.substr(1));
    for (std::string token; std::getline(tokens, token, '/');) {
        const bool element = std::isdigit(static_cast<unsigned char>(token.front())) != 0;
        place += element ? "[" + token + "]" : (place.empty() ? "" : ".") + token;
    }
    return place;
}

/// What reading only the document says of it.
std::string refusalOfDocument(const Json& document) {
    try {
        gltf::readDocument(document, "scene.gltf");
    } catch (const Error& error) {
        return error.what();
    }
    return "";
}

TEST(GltfBadInput, ValuesOfAnotherTypeAreNamedByTheirPlace) {
    const Json whole = fullScene().document;
    const Json leaves = whole.flatten();
    const std::regex indices(
        "(mesh|skin|camera|light|scene|material|indices|bufferView|buffer|index|sampler|"
        "source|node|put|Matrices|/[A-Z][A-Z0_]*|(nodes|joints)/[0-9])$");
    std::size_t checked = 0;
    for (const auto& [pointer, value] : leaves.items()) {
        if (pointer.starts_with("/asset")) continue;
        std::vector<Json> others = {Json::array({5}), value.is_string() ? Json(5) : Json("x\n")};
        if (value.is_number_unsigned()) others.push_back(-1.5e39);
        if (std::regex_search(pointer, indices)) others.push_back(4294967296U);
        for (const Json& other : others) {
            Json document = whole;
            document[Json::json_pointer(pointer)] = other;
            const std::string line = refusalOfDocument(document);
            EXPECT_THAT(line, HasSubstr("scene.gltf: " + placeOf(pointer) + " is "));
            EXPECT_THAT(line, EndsWith(": export the file again"));
            ++checked;
        }
    }
    EXPECT_GT(checked, 300U);
}

TEST(GltfBadInput, MembersThatAreMissingOrOutOfPlaceAreNamed) {
    expectChangesRefused({
        {"/nodes", "5", "nodes is 5 but must be a list"},
        {"/nodes/0", "\"x\"", "nodes[0] is \"x\" but must be an object"},
        {"/nodes/0/mesh", "0.5", "nodes[0].mesh is 0.5"},
        {"/nodes/0/mesh", "-1", "nodes[0].mesh is -1"},
        {"/nodes/1/translation", "[0, 0]", "must be a list of 3 numbers"},
        {"/nodes/1/scale", "[1e300, 1, 1]", "nodes[1].scale[0]"},
        {"/nodes/1/rotation", "[0]", "a list of 4"},
        {"/nodes/2/matrix", "[1, 2, 3]", "must be a list of 16 numbers"},
        {"/nodes/1/extensions/KHR_lights_punctual/light", "", "light is missing"},
        {"/meshes/0/primitives", "", "meshes[0].primitives is missing"},
        {"/meshes/0/primitives/0/attributes/a\nb", "true", "attributes.a b"},
        {"/accessors/0/count", "1e-1", "accessors[0].count"},
        {"/accessors/0/componentType", "", "componentType is missing"},
        {"/accessors/0/sparse", "{\"count\": 1}", "sparse.indices is missing"},
        {"/buffers/0/byteLength", "", "buffers[0].byteLength is missing"},
        {"/cameras/0/perspective", "", "cameras[0].perspective is missing"},
        {"/cameras/1/orthographic", "", "cameras[1].orthographic is missing"},
        {"/cameras/0/type", "\"fisheye\"", "\"fisheye\" but must be perspective or ortho"},
        {"/extensions/KHR_lights_punctual/lights/0/type", "\"area\"", "\"area\""},
        {"/materials/0/pbrMetallicRoughness/baseColorFactor", "[1, 1, 1]", "list of 4"},
        {"/animations/0/channels/0/target", "", "target is missing"},
        {"/animations/0/channels/1/sampler", "3",
         "channels[1].sampler is 3 but must be one of its 3 samplers"},
        {"/animations/0/channels/2/target/extensions", "", "KHR_animation_pointer is missing"},
        {"/animations/0/channels/2/target/extensions/KHR_animation_pointer/pointer", "\"a/b\"",
         "a JSON pointer"},
        {"/animations/0/samplers/1/interpolation", "\"BEZIER\"", "LINEAR or STEP or CUBICSPLINE"},
        {"/extensionsRequired", "[\"XYZ_new\"]", "needs the extension XYZ_new"},
        {"/extensionsRequired", "[5]", "extensionsRequired[0] is 5"},
    });
}

TEST(GltfBadInput, NumbersOutOfRange) {
    expectChangesRefused({
        {"/nodes/0/mesh", "1", "nodes[0].mesh is 1 but must be one of its 1 meshes"},
        {"/meshes/0/primitives/0/indices", "0", "single unsigned integers"},
        {"/meshes/0/primitives/0/attributes/POSITION", "2", "components"},
        {"/meshes/0/primitives/0/attributes/NORMAL", "2", "components"},
        {"/meshes/0/primitives/0/attributes/NORMAL", "8", "another length"},
        {"/accessors/0/count", "4", "reads 4 elements past the end"},
        {"/accessors/0/count", "9007199254740991", "past the end"},
        {"/accessors/0/count", "18446744073709551615", "accessors[0].count"},
        {"/accessors/0/byteOffset", "4", "past the end"},
        {"/accessors/0/byteOffset", "9007199254740991", "past the end"},
        {"/accessors/0/componentType", "5124", "unknown type"},
        {"/accessors/0/componentType", "5130", "unknown type"},
        {"/accessors/0/type", "\"VEC9\"", "VEC9"},
        {"/accessors/5/componentType", "5125", "past the end"},
        {"/bufferViews/0/byteStride", "252", "past the end"},
        {"/bufferViews/0/byteStride", "3", "byteStride"},
        {"/bufferViews/0/byteStride", "9007199254740988", "byteStride"},
        {"/bufferViews/0/byteLength", "9007199254740991", "reaches past the end of buffer 0"},
        {"/bufferViews/0/byteOffset", "9007199254740991", "reaches past the end of buffer 0"},
        {"/buffers/0/byteLength", "2147483648", "declares 2147483648 bytes but has"},
        {"/cameras/0/perspective/yfov", "0", "field of view"},
        {"/cameras/0/perspective/yfov", "4", "field of view"},
        {"/cameras/0/perspective/aspectRatio", "-1", "field of view"},
        {"/nodes/1/scale", "[3e38, 1, 1]", "metres"},
    });
}

TEST(GltfBadInput, NothingUnpacksToAnySize) {
    const TemporaryFolder folder;
    GltfBuilder zeros;
    zeros.mesh({{"POSITION",
                 zeros.add("accessors",
                           {{"componentType", 5126}, {"count", 4000000000U}, {"type", "VEC3"}})}});
    zeros.root({{"mesh", 0}});
    expectRefused(zeros.write(folder), "without data", "4 billion zeros");

    GltfBuilder overlapping;
    const int view = overlapping.view(std::vector<float>(60000, 1.0F));
    for (int i = 0; i < 2000; ++i) {
        Json accessor = {{"bufferView", view}, {"componentType", 5126}, {"count", 19000}};
        accessor.update({{"byteOffset", 4 * i}, {"type", "VEC3"}, {"name", "overlapping"}});
        const int index = overlapping.add("accessors", accessor);
        overlapping.root({{"mesh", overlapping.mesh({{"POSITION", index}})}});
    }
    expectRefused(overlapping.write(folder), "far more than the file holds", "overlap");

    GltfBuilder crowd;
    const int corners = crowd.accessor(GltfBuilder::corners(), "VEC3");
    const int mesh = crowd.mesh({{"POSITION", corners}, {"NORMAL", corners}},
                                crowd.accessor(std::vector<std::uint8_t>(90000, 1), "SCALAR"));
    crowd.primitive(mesh)["targets"] = {{{"POSITION", corners}}};
    for (int i = 1; i <= 2000; ++i)
        crowd.root({{"mesh", mesh}, {"weights", {i}}});
    expectRefused(crowd.write(folder), "fewer skinned or morphed nodes", "crowd");
}

/// Where the data of an accessor of fullScene begins.
std::size_t dataOf(const GltfBuilder& file, std::size_t accessor) {
    const auto view = file.document["accessors"][accessor]["bufferView"].get<std::size_t>();
    return file.document["bufferViews"][view]["byteOffset"].get<std::size_t>();
}

TEST(GltfBadInput, DataThatCannotBe) {
    const TemporaryFolder folder;
    // Positions, normals, UVs, weights, morph target, bind matrix, times.
    for (const std::size_t accessor : {0U, 1U, 2U, 4U, 6U, 7U, 8U}) {
        for (const float odd : {std::nanf(""), HUGE_VALF}) {
            GltfBuilder file = fullScene();
            std::memcpy(&file.bytes[dataOf(file, accessor) + 4], &odd, sizeof odd);
            expectRefused(file.write(folder), "not a finite number", std::to_string(accessor));
        }
    }
    GltfBuilder file = fullScene();
    file.bytes[dataOf(file, 5)] = 3;
    expectRefused(file.write(folder), "mesh 0 \"\", primitive 0: uses vertex 3 of 3", "index");
    file = fullScene();
    file.bytes[dataOf(file, 3)] = 1;
    expectRefused(file.write(folder), "joint that skin 0 does not have", "joint");
}

TEST(GltfBadInput, AnimationsThatCannotBePlayed) {
    expectChangesRefused({
        {"/accessors/9/count", "1", "animations[0].channels[0] has 1 values"},
        {"/accessors/11/count", "4", "has 4 values in accessor 11 for its 2 keys, three a key"},
        {"/animations/0/samplers/0/output", "10", "takes a VEC3 each, but its accessor 10 has"},
        {"/animations/0/samplers/1/output", "11", "channels[1] has 6 values"},
        {"/animations/0/channels/1/target/path", "\"rotation\"", "takes a VEC4 each"},
        {"/animations/0/samplers/0/input", "9", "components"},
        {"/accessors/11/byteOffset", "4", "accessor 11 reads 6 elements past the end"},
    });
    const TemporaryFolder folder;
    GltfBuilder file = fullScene();
    const float late = 2;
    std::memcpy(&file.bytes[dataOf(file, 8)], &late, sizeof late);
    expectRefused(file.write(folder), "times in accessor 8 go backwards at element 1", "times");
}

TEST(GltfBadInput, NoFileMakesAMessageLong) {
    const std::string name = std::string(30001, '\n') + "\xc3\xa4";
    const Json text = name;
    const std::pair<std::string, Json> changes[] = {
        {"/asset/version", text},
        {"/extensionsRequired", Json::array({text})},
        {"/nodes/0/mesh", text},
        {"/nodes/0/mesh", Json::array({text})},
        {"/accessors/0/type", text},
        {"/images/0/uri", text},
        {"/buffers/0/uri", text},
        {"/cameras/0/type", text},
        {"/meshes/0/primitives/0/attributes/" + name, true},
    };
    for (const auto& [at, value] : changes) {
        GltfBuilder file = fullScene();
        file.document[Json::json_pointer(at)] = value;
        const TemporaryFolder folder;
        const std::string line = refusalOf(file.write(folder));
        EXPECT_THAT(line, Not(testing::IsEmpty())) << at;
        EXPECT_LT(line.size(), 400U) << line.substr(0, 400);
    }
    GltfBuilder file = fullScene();
    file.document["meshes"][0]["name"] = name;
    file.document["meshes"][0]["primitives"][0]["mode"] = 0;
    file.document["materials"][0]["name"] = name;
    file.document["materials"][0]["normalTexture"] = {{"index", text}};
    file.document["materials"][0]["occlusionTexture"] = Json::object();
    file.document["materials"][0]["extras"]["tavora"]["selfShadow"] = 5;
    const Scene scene = file.read();
    EXPECT_GE(scene.warnings.size(), 3U);
    EXPECT_FALSE(scene.notes.empty());
    for (const auto* lines : {&scene.warnings, &scene.notes}) {
        for (const std::string& line : *lines)
            EXPECT_LT(line.size(), 500U) << line.substr(0, 500);
    }
}

/// `count` members with names of their own, or one name, of one value.
std::string members(std::size_t count, const char* value, bool same = false) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += (i == 0 ? "\"key " : ",\"key ") + std::to_string(same ? 0 : i) + "\":";
        text += value;
    }
    return text;
}

TEST(GltfBadInput, TimeGoesWithTheNumberOfMembers) {
    constexpr std::size_t kMany = 200000;
    const std::string accessor = R"("accessors": [{"componentType": 5126, "count": 1,
        "type": "VEC3"}], )";
    const std::string texts[] = {
        members(kMany, "0"),
        members(kMany, "0", true),
        R"("extras": {)" + members(kMany, "[]") + "}",
        R"("materials": [{"extensions": {)" + members(kMany, "{}") + "}}]",
        accessor + R"("meshes": [{"primitives": [{"attributes": {"POSITION": 0, )" +
            members(kMany, "0") + R"(}}]}], "nodes": [{"mesh": 0}])",
    };
    for (const std::string& text : texts) {
        const TemporaryFolder folder;
        putBytes(folder / "a.gltf", R"({"asset": {"version": "2.0"}, )" + text + "}");
        const std::clock_t start = std::clock();
        EXPECT_EQ(refusalOf(folder / "a.gltf"), "");
        EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 8) << text.substr(0, 80);
    }
}

TEST(GltfBadInput, NodesThatAreNoTree) {
    const std::vector<std::pair<const char*, std::string>> trees = {
        {"its own child", R"([{"children": [0]}])"},
        {"a circle", R"([{"children": [1]}, {"children": [2]}, {"children": [0]}])"},
        {"two parents", R"([{"children": [1, 2]}, {"children": [2]}, {}])"},
        {"twice a child", R"([{"children": [1, 1]}, {}])"}};
    for (const auto& [what, nodes] : trees) {
        GltfBuilder file;
        file.document["nodes"] = Json::parse(nodes);
        file.document["scenes"] = R"([{"nodes": [0]}])"_j;
        const TemporaryFolder folder;
        expectRefused(file.write(folder), "has two parents or is its own", what);
    }
}

TEST(GltfBadInput, AChainOfTenThousandNodesIsFine) {
    GltfBuilder file;
    for (int i = 0; i < 10000; ++i)
        file.add("nodes", {{"children", {i + 1}}, {"translation", {0, 0, 1}}});
    file.add("nodes",
             {{"mesh", file.mesh({{"POSITION", file.accessor(GltfBuilder::corners(), "VEC3")}})}});
    file.document["scenes"] = R"([{"nodes": [0]}])"_j;
    EXPECT_EQ(file.read().bounds.max.z, 10000);
}

TEST(GltfBadInput, UrisThatLeaveTheFolder) {
    const std::vector<std::string> uris = {"../scene.bin",
                                           "a/../../scene.bin",
                                           "%2e%2e/scene.bin",
                                           "%2E%2E%2Fscene.bin",
                                           "/etc/passwd",
                                           "%2Fetc%2Fpasswd",
                                           "http://example.com/a.bin",
                                           "file:///etc/passwd",
                                           "..\\scene.bin",
                                           "C:\\a.bin",
                                           "~/a.bin",
                                           "a%00.bin",
                                           "a%zz.bin",
                                           "a%2"};
    for (const char* list : {"buffers", "images"}) {
        for (const std::string& uri : uris) {
            GltfBuilder file = fullScene();
            file.document[list][0]["uri"] = uri;
            const TemporaryFolder folder;
            expectRefused(file.write(folder), "only files in the scene's own folder", uri);
        }
    }
}

TEST(GltfBadInput, FilesBesideTheSceneThatAreMissingOrShort) {
    const TemporaryFolder folder;
    GltfBuilder file = fullScene();
    file.document["buffers"][0]["uri"] = "none.bin";
    expectRefused(file.write(folder), "buffers[0] cannot be had from the file \"none.bin\"",
                  "none");
    file.document["buffers"][0]["uri"] = ".";
    expectRefused(file.write(folder), "put it beside the scene", "a folder");
    file.document["buffers"][0]["uri"] = "data:application/octet-stream;base64,AAAA";
    expectRefused(file.write(folder), "bytes but has 3", "short data");
    file.document["buffers"][0]["uri"] = "data:;base64,A***";
    expectRefused(file.write(folder), "damaged data URI", "no base64");
    file.document["buffers"][0].erase("uri");
    expectRefused(file.write(folder), "bytes but has 0", "no data at all");
}

TEST(GltfBadInput, FilesAreNotTakenFromTheWorkingFolder) {
    const TemporaryFolder folder;
    const TemporaryFolder elsewhere;
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(elsewhere.path());
    GltfBuilder file = fullScene();
    file.document["buffers"][0]["uri"] = "other.bin";
    putBytes("other.bin", file.bytes);
    expectRefused(file.write(folder), "put it beside the scene", "other.bin");
    std::filesystem::current_path(before);
}

TEST(GltfBadInput, WholeNumbersMayHaveAPoint) {
    GltfBuilder file = fullScene();
    const Json leaves = file.document.flatten();
    for (const auto& [pointer, value] : leaves.items()) {
        if (value.is_number_integer())
            file.document[Json::json_pointer(pointer)] = value.get<double>();
    }
    EXPECT_THAT(file.document.dump(), HasSubstr("\"mesh\":0.0"));
    EXPECT_EQ(file.read().objects.size(), 1U);
}

TEST(GltfBadInput, TheLastOfTwoEqualKeysCounts) {
    const TemporaryFolder folder;
    putBytes(folder / "a.gltf", R"({"asset": {"version": "1.0"}, "asset": {"version": "2.0"},
        "cameras": 5, "cameras": []})");
    EXPECT_EQ(refusalOf(folder / "a.gltf"), "");
}

}  // namespace
}  // namespace tavora::studio
