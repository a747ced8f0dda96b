// Files that cannot be read: one line names each and the place and says what to do.

#include <algorithm>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>

#include "studio/scene/gltf/document_reader.h"
#include "studio/scene/gltf/uri.h"
#include "tests/scene/gltf_builder.h"

namespace tavora::studio {
namespace {

using testing::AllOf, testing::ContainsRegex, testing::HasSubstr, testing::Not;

/// A scene in which every part that is read occurs, with its buffer beside it.
GltfBuilder fullScene() {
    GltfBuilder file;
    file.document = Json::parse(bytesOf(TEST_INPUTS "/scene/every-part.gltf"));
    const std::string uri = file.document["buffers"][0]["uri"];
    const auto data = dataOfUri(uri).value();
    file.bytes.assign(data.begin(), data.end());
    file.document["buffers"][0]["uri"] = "scene.bin";
    return file;
}

/// Expects `line` to name the file, to have `says` in it and then advice.
void expectRefused(const std::string& line, const std::string& says) {
    EXPECT_THAT(line, AllOf(HasSubstr("/scene.gltf:"), HasSubstr(says), Not(HasSubstr("\n")),
                            ContainsRegex("scene.gltf:[0-9 ].*[:;,(] [a-z]")));
}

std::string refusedText(const std::string& bytes) {
    const TemporaryFolder folder;
    putBytes(folder / "scene.gltf", bytes);
    return refusal([&] { readGltf(folder / "scene.gltf"); });
}

TEST(GltfBadInput, FilesThatAreNotGltf) {
    const std::string whole = GltfBuilder::glb(R"({"asset": {"version": "2.0"}})", "1234");
    const auto changed = [&](std::size_t at, const std::string& by) {
        return std::string(whole).replace(at, by.size(), by);
    };
    const std::pair<std::string, const char*> cases[] = {
        {"", "is empty"},
        {"[1, 2]", "is not glTF"},
        {R"({"asset": {"version": "1.0"}})", "is glTF 1.0"},
        {R"({"asset": {"version": 2.0}})", "is not glTF"},
        {R"({"asset": {"version": "2.0"}, "scene": 1e999})", "number"},
        {"{\"asset\": {\"version\": \"\xff\"}}", "not valid JSON"},
        {std::string(100000, '['), "nested deeper"},
        {whole.substr(0, 12), "truncated"},
        {whole.substr(0, whole.size() - 4), "is a truncated .glb"},
        {changed(4, "\1"), "another version than 2"},
        {changed(16, "XXXX"), "JSON chunk"},
        {changed(12, GltfBuilder::word(whole.size() - 12)), "JSON chunk"},
        {changed(whole.size() - 12, "\5"), "binary chunk is truncated"}};
    for (const auto& [bytes, says] : cases)
        expectRefused(refusedText(bytes), says);
    EXPECT_EQ(refusedText(changed(49, std::string(3, '\0'))), "") << "padding of zeros";
}

TEST(GltfBadInput, ValuesOfAnotherTypeAreNamedByTheirPlace) {
    const Json whole = fullScene().document, leaves = whole.flatten();
    for (const auto& [pointer, value] : leaves.items()) {
        if (pointer.starts_with("/asset")) continue;
        std::string place = std::regex_replace(pointer, std::regex("/([0-9]+)"), "[$1]");
        std::replace(place.begin(), place.end(), '/', '.');  // ".nodes[0].mesh"
        std::vector<Json> others = {Json::array({5}), value.is_string() ? Json(5) : Json("x\n")};
        if (value.is_number_unsigned()) others.push_back(-1.5e39);
        for (const Json& other : others) {
            Json document = whole;
            document[Json::json_pointer(pointer)] = other;
            expectRefused(refusal([&] { gltf::readDocument(document, "/scene.gltf"); }),
                          "scene.gltf: " + place.substr(1) + " is ");
        }
    }
}

/// Where a value is changed, to what, and what is said of it.
const Json kChanges = R"([
    ["/nodes", 5, "nodes is 5 but must be a list"],
    ["/nodes/0", "x", "nodes[0] is \"x\" but must be an object"],
    ["/nodes/0/mesh", 0.5, "nodes[0].mesh is 0.5"], ["/nodes/0/mesh", 1, "is 1 but must be one of its 1 meshes"],
    ["/nodes/0/children", [0], "has two parents or is its own"],
    ["/nodes/1/translation", [0, 0, 0, 0], "must be a list of 3 numbers"],
    ["/nodes/1/scale", [1e300, 1, 1], "nodes[1].scale[0]"],
    ["/nodes/1/scale", [3e38, 1, 1], "metres"],
    ["/nodes/1/extensions/KHR_lights_punctual/light", null, "KHR_lights_punctual.light is missing"],
    ["/meshes/0/primitives/0/attributes/a\nb", true, "attributes.a b"],
    ["/meshes/0/primitives/0/indices", 0, "single unsigned integers"],
    ["/meshes/0/primitives/0/attributes/POSITION", 2, "components"],
    ["/meshes/0/primitives/0/attributes/TEXCOORD_0", 0, "components"],
    ["/accessors/0/componentType", null, "accessors[0].componentType is missing"],
    ["/accessors/6/sparse/indices", null, "accessors[6].sparse.indices is missing"],
    ["/accessors/6/sparse/indices/componentType", 5122, "sparse indices of accessor 6 are not unsigned"],
    ["/accessors/0/type", "VEC9", "VEC9"], ["/accessors/1/count", 4, "NORMAL has another length"],
    ["/accessors/6/count", 4, "morph target has another length"],
    ["/accessors/0/count", 4, "reads 4 elements past the end"],
    ["/accessors/0/count", 9007199254740991, "past the end"],
    ["/accessors/0", {"componentType": 5126, "count": 4000000000, "type": "VEC3"}, "without data"],
    ["/bufferViews/0/byteStride", 3, "byteStride"],
    ["/bufferViews/0/byteStride", 252, "past the end"],
    ["/bufferViews/13/byteLength", 20, "reaches past the end of buffer 0"],
    ["/buffers/0/byteLength", 4, "reaches past the end of buffer 0"],
    ["/buffers/0/uri", "none.bin", "buffers[0] cannot be had from the file \"none.bin\""],
    ["/buffers/0/uri", "data:application/octet-stream;base64,AAAA", "bytes but has 3"],
    ["/buffers/0/uri", "data:;base64,A~:*", "damaged data URI"],
    ["/buffers/0/uri", "data:;base32,AAAA", "damaged data URI"],
    ["/buffers/0/uri", "data:;base64,AAAAA", "damaged data URI"],
    ["/buffers/0/uri", "", "bytes but has 0"],
    ["/cameras/0/perspective/yfov", 4, "field of view"],
    ["/cameras/0/perspective/yfov", 0, "field of view"],
    ["/cameras/0/perspective/aspectRatio", -1, "field of view"],
    ["/cameras/0/type", "fisheye", "\"fisheye\" but must be perspective or ortho"],
    ["/animations/0/channels/1/sampler", 3, "is 3 but must be one of its 3 samplers"],
    ["/animations/0/channels/2/target/extensions/KHR_animation_pointer", null, "is missing"],
    ["/animations/0/samplers/1/interpolation", "BEZIER", "LINEAR or STEP or CUBICSPLINE"],
    ["/animations/0/samplers/0/output", 10, "takes a VEC3 each, but its accessor 10 has"],
    ["/accessors/11/count", 4, "has 4 values in accessor 11 for its 2 keys, three a key"],
    ["/extensionsRequired", ["XYZ_new"], "needs the extension XYZ_new"]])"_j;

TEST(GltfBadInput, ValuesThatCannotBeAreNamed) {
    for (const Json& change : kChanges) {
        SCOPED_TRACE(change.dump());
        GltfBuilder file = fullScene();
        file.document[Json::json_pointer(change[0])] = change[1];
        expectRefused(file.refused(), change[2]);
    }
}

TEST(GltfBadInput, DataThatCannotBeIsNamed) {
    std::vector<std::tuple<std::size_t, std::string, const char*>> changes = {
        {5, "\3", "mesh 0 \"\", primitive 0: uses vertex 3 of 3"},
        {3, "\1", "joint that skin 0 does not have"},
        {8, "\1\1\1\x7f", "times in accessor 8 go backwards at element 1"},
        {12, "\3", "accessor 6 replaces element 3 of 3"},
        {0, std::string("\0\0\x80\x7f", 4), "not a finite number"}};
    // Positions, normals, UVs, weights, bind matrix, times.
    for (const std::size_t view : {0U, 1U, 2U, 4U, 7U, 8U})
        changes.emplace_back(view, "\xff\xff\xff\x7f", "not a finite number");
    GltfBuilder file = fullScene();
    for (const auto& [view, bytes, says] : changes) {
        file = fullScene();
        const auto at = file.document["bufferViews"][view]["byteOffset"].get<std::size_t>();
        file.bytes.replace(at, bytes.size(), bytes);
        expectRefused(file.refused(), says);
    }
    file.document["buffers"] = R"([{"byteLength": 4}, {"byteLength": 4}])"_j;
    const TemporaryFolder folder;
    EXPECT_THAT(refusal([&] { readGltf(file.write(folder, true)); }),
                HasSubstr("buffers[1] declares 4 bytes but has 0"));
}

TEST(GltfBadInput, NothingLiesWhereNoRayMeetsIt) {
    for (const auto& [size, place] : {std::pair{1e30F, R"({"scale": [1e-30, 1e-30, 1e-30]})"_j},
                                      std::pair{1.0F, R"({"translation": [0, 1e30, 0]})"_j}}) {
        GltfBuilder file;
        file.accessor(std::vector<float>{0, 0, 0, size, 0, 0, 0, size, 0}, "VEC3");
        Json node = place;
        node["mesh"] = file.mesh({{"POSITION", 0}});
        file.root(node);
        expectRefused(file.refused(), "metres from the origin");
    }
}

TEST(GltfBadInput, NothingUnpacksToAnySize) {
    GltfBuilder overlapping, crowd;
    Json accessor = R"({"componentType": 5126, "count": 19000, "type": "VEC3"})"_j;
    accessor["bufferView"] = overlapping.view(std::vector<float>(60000, 1));
    for (int i = 0; i < 1500; ++i) {
        accessor["byteOffset"] = 4 * i;
        overlapping.root({{"mesh", overlapping.mesh({{"POSITION", i}})}});
        overlapping.add("accessors", accessor);
    }
    expectRefused(overlapping.refused(), "far more than the file holds");
    crowd.accessor(GltfBuilder::corners(), "VEC3");
    crowd.accessor(std::vector<std::uint8_t>(90000, 1), "SCALAR");
    crowd.mesh({{"POSITION", 0}, {"NORMAL", 0}},
               {{"indices", 1}, {"targets", {{{"POSITION", 0}}}}});
    for (int i = 1; i <= 2000; ++i)
        crowd.root({{"mesh", 0}, {"weights", {i}}});
    expectRefused(crowd.refused(), "fewer skinned or morphed nodes");
}

TEST(GltfBadInput, NoFileMakesAMessageLong) {
    const std::string name = std::string(30001, '\n') + "\xc3\xa4";
    GltfBuilder file = fullScene();
    file.document["meshes"][0]["name"] = name;
    file.primitive(0)["mode"] = 0;
    file.document["materials"][0] = {{"name", name}, {"occlusionTexture", Json::object()}};
    const Scene scene = file.read();
    std::vector<std::string> lines = scene.warnings;
    lines.push_back(scene.notes.at(0));
    for (const char* at : {"/asset/version", "/extensionsRequired/0", "/nodes/0/mesh",
                           "/accessors/0/type", "/images/0/uri", "/buffers/0/uri"}) {
        file = fullScene();
        file.document[Json::json_pointer(at)] = name;
        lines.push_back(file.refused());
    }
    EXPECT_THAT(lines, testing::Each(AllOf(Not(""), testing::SizeIs(testing::Lt(500)))));
}

/// Many members with names of their own, or one name.
std::string members(bool same = false) {
    std::string text = "\"key\":0";
    for (int i = 0; i < 200000; ++i)
        text += ",\"key " + std::to_string(same ? 0 : i) + "\":0";
    return text;
}

TEST(GltfBadInput, TimeGoesWithTheNumberOfMembersAndNodes) {
    std::string chain = R"("scenes": [{"nodes": [0]}], "nodes": [)";
    for (int i = 1; i < 100000; ++i)
        chain += R"({"children": [)" + std::to_string(i) + "]},";
    for (const std::string& text :
         {members(), members(true), R"("materials": [{"extensions": {)" + members() + "}}]",
          R"("accessors": [{"componentType": 5126, "count": 1, "type": "VEC3"}],
             "nodes": [{"mesh": 0}], "meshes": [{"primitives": [{"attributes": {"POSITION": 0,)" +
              members() + "}}]}]",
          chain + "{}]"}) {
        const std::clock_t start = std::clock();
        EXPECT_EQ(refusedText(R"({"asset": {"version": "2.0"}, )" + text + "}"), "");
        EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 8) << text.substr(0, 80);
    }
}

TEST(GltfBadInput, UrisThatLeaveTheFolder) {
    for (const char* list : {"buffers", "images"}) {
        for (const char* uri :
             {"../scene.bin", "a/../../scene.bin", "%2e%2E%2Fscene.bin", "%2Fetc%2Fpasswd",
              "file:///etc/passwd", "..\\scene.bin", "~/a.bin", "a%00.bin", "a%zz.bin", "a%2"}) {
            GltfBuilder file = fullScene();
            file.document[list][0]["uri"] = uri;
            expectRefused(file.refused(), "only files in the scene's own folder");
        }
    }
}

TEST(GltfBadInput, WholeNumbersMayHaveAPointAndTheLastOfEqualKeysCounts) {
    GltfBuilder file = fullScene();
    const Json leaves = file.document.flatten();
    for (const auto& [pointer, value] : leaves.items()) {
        if (value.is_number_integer())
            file.document[Json::json_pointer(pointer)] = value.get<double>();
    }
    const Scene scene = file.read();
    EXPECT_TRUE(scene.objects.size() == 1 && scene.animations.at(0).start == 0 &&
                scene.animations[0].end == 2);
    const char* twice =
        R"({"asset": 1, "asset": {"version": "2.0"}, "cameras": 5, "cameras": null})";
    EXPECT_EQ(refusedText(twice), "");
}

}  // namespace
}  // namespace tavora::studio
