// Triangles, vertices, normals and tangents as files store them or as they are made.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "studio/scene/mesh/tangents.h"
#include "tests/scene/gltf_builder.h"

namespace tavora::studio {
namespace {

using Imath::V3f, Imath::V4f;
using testing::HasSubstr;

TEST(GltfGeometry, StripsAndFansWindLikeLists) {
    const std::vector<float> square = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
    const std::vector<float> strip = {0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0};
    const std::tuple<int, std::vector<float>, std::vector<std::uint16_t>, std::size_t> cases[] = {
        {4, square, {0, 1, 2, 0, 2, 3}, 2},
        {5, strip, {0, 1, 2, 3}, 2},
        {5, strip, {0, 1, 2, 2, 3, 1}, 2},  // stitched: empty triangles go
        {6, square, {3, 0, 1, 2}, 2},
        {4, square, {0, 1, 2, 0}, 1},  // a rest of no three corners goes
        {1, square, {0, 1, 2, 3}, 0}};
    for (const auto& [mode, positions, indices, triangles] : cases) {
        GltfBuilder file;
        const int corners = file.accessor(positions, "VEC3");
        const int order = file.accessor(indices, "SCALAR");
        const Scene scene =
            file.readPrimitive({{"POSITION", corners}}, {{"mode", mode}, {"indices", order}});
        ASSERT_EQ(scene.objects.empty(), mode == 1);
        EXPECT_THAT(scene.warnings,
                    testing::Contains(HasSubstr("lines are not drawn")).Times(mode == 1));
        if (mode == 1) continue;
        EXPECT_EQ(firstMesh(scene).triangles.size(), triangles) << "mode " << mode;
        EXPECT_EQ(firstMesh(scene).normals, std::vector(3 * triangles, V3f(0, 0, 1))) << mode;
    }
}

TEST(GltfGeometry, NormalsAreOfLengthOneAndFlatWhereThereAreNone) {
    GltfBuilder file;
    // Two triangles that share an edge, folded by a right angle.
    const int folded = file.accessor<float>({0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1}, "VEC3");
    const int indices = file.accessor<std::uint8_t>({0, 1, 2, 0, 2, 3}, "SCALAR");
    const Scene bare = file.readPrimitive({{"POSITION", folded}}, {{"indices", indices}});
    const Mesh& mesh = firstMesh(bare);
    EXPECT_FALSE(mesh.smooth);
    for (const auto& [a, b, c] : mesh.triangles)
        EXPECT_EQ(mesh.normals[c], mesh.positions[c].y > 0 ? V3f(0, 0, 1) : V3f(1, 0, 0)) << a << b;
    const auto read = [](const std::vector<float>& corners, const std::vector<float>& normals) {
        GltfBuilder stored;
        return firstMesh(stored.readPrimitive({{"POSITION", stored.accessor(corners, "VEC3")},
                                               {"NORMAL", stored.accessor(normals, "VEC3")}}));
    };
    const Mesh flat = read(GltfBuilder::corners(), {0, 0, 2, 0, 0, 5, 0, 0, 0.001F});
    EXPECT_TRUE(!flat.smooth && flat.normals == std::vector(3, V3f(0, 0, 1))) << "as if made";
    const Mesh smooth = read(GltfBuilder::corners(), {0, 0, 1, 0.6F, 0, 0.8F, 0, 0, 0});
    EXPECT_TRUE(smooth.smooth);
    EXPECT_EQ(smooth.normals[2], V3f(0, 0, 1)) << "no length: the triangle's own";
    const std::vector<float> noArea[] = {{0, 0, 0, 1, 1, 1, 2, 2, 2},
                                         {0, 0, 0, 1e-30F, 0, 0, 0, 1e-30F, 0},
                                         {0, 0, 0, 1e17F, 0, 0, 0, 1e17F, 0}};
    for (const auto& shape : noArea)
        EXPECT_NEAR(read(shape, std::vector<float>(9, 0)).normals[0].length(), 1, 1e-5);
    EXPECT_FALSE(read(noArea[0], GltfBuilder::upward()).smooth) << "without area";
}

TEST(GltfGeometry, MeshesAreSharedBetweenNodesAndSkippedVerticesDropped) {
    GltfBuilder file;
    std::vector<float> pool(3000, 5.0F);
    const std::vector<float> corners = GltfBuilder::corners();
    std::copy_n(corners.begin(), 6, pool.begin() + 300);
    std::copy_n(corners.begin() + 6, 3, pool.begin() + 900);
    const int far = file.accessor<std::uint16_t>({100, 101, 300, 100, 300, 101}, "SCALAR");
    const int positions = file.accessor(pool, "VEC3");
    file.mesh({{"POSITION", positions}, {"NORMAL", positions}}, {{"indices", far}});
    Json second = file.primitive();
    second["material"] = file.add("materials", {{"name", "Red"}});
    file.document["meshes"][0]["primitives"].push_back(second);
    file.root({{"mesh", 0}});
    file.root({{"mesh", 0}, {"translation", {5, 0, 0}}});
    const Scene scene = file.read();
    ASSERT_EQ(scene.objects.size(), 2U);
    const auto& parts = scene.objects[0]->parts;
    EXPECT_EQ(parts.at(1).mesh, scene.objects[1]->parts.at(1).mesh);
    EXPECT_EQ(firstMesh(scene).positions, (std::vector{V3f(0), V3f(1, 0, 0), V3f(0, 1, 0)}));
    EXPECT_EQ(scene.bounds.max, Imath::V3d(6, 1, 0));
    EXPECT_EQ(parts[1].firstPolygon, 2) << "numbered through the object";
    EXPECT_TRUE(parts[0].surface == 1 && parts[1].surface == 0) << "the default one is the last";
}

/// A scene with that data as its only mesh.
GltfBuilder sceneOf(const std::string& data) {
    GltfBuilder file;
    file.document["accessors"] =
        R"([{"componentType": 5126, "count": 4, "type": "VEC3"},
            {"componentType": 5126, "count": 4, "type": "VEC3"},
            {"componentType": 5121, "count": 4, "type": "VEC3", "normalized": true},
            {"componentType": 5123, "count": 4, "type": "SCALAR"}])"_j;
    const Json attributes = {{"POSITION", 0}, {"NORMAL", 1}, {"COLOR_0", 2}};
    file.mesh(attributes, {{"indices", 3}});
    file.primitive()["extensions"]["KHR_draco_mesh_compression"] = {
        {"bufferView", file.view(std::vector(data.begin(), data.end()))},
        {"attributes", attributes}};
    file.document["extensionsRequired"] = {"KHR_draco_mesh_compression"};
    file.root({{"mesh", 0}});
    return file;
}

TEST(GltfDraco, GivesTheMeshBackOrRefusesDamage) {
    for (const bool byEdges : {false, true}) {
        // A square of two triangles in z = 1 with normals along z and eight-bit colours.
        const std::string whole =
            bytesOf(TEST_INPUTS + std::string(byEdges ? "/mesh/edges" : "/mesh/sequence"));
        const Scene scene = sceneOf(whole).read();
        const Mesh& mesh = firstMesh(scene);
        ASSERT_EQ(mesh.triangles.size(), 2U);
        float area = 0;
        for (const auto& [a, b, c] : mesh.triangles) {
            const V3f corner = mesh.positions[a];
            area += (mesh.positions[b] - corner).cross(mesh.positions[c] - corner).z / 2;
        }
        EXPECT_NEAR(area, 1, 1e-3);
        EXPECT_NEAR(scene.bounds.min.z * mesh.normals[0].z, 1, 1e-3);
        // The accessor says that the bytes are fractions; the data does not.
        EXPECT_EQ(mesh.colors.at(0), Imath::V4f(1, 0.2F, 0, 1));

        for (std::size_t size = 1; size < whole.size(); size += 5)
            EXPECT_NE(sceneOf(whole.substr(0, size)).refused(), "") << size;
        // Both counts follow eleven bytes, and one more on how edges are walked.
        for (const std::size_t place : {0U, 1U}) {
            const std::string billion = "\x80\x94\xeb\xdc\x03";
            const std::string wild =
                std::string(whole).replace(place + (byEdges ? 12 : 11), 1, billion);
            EXPECT_THAT(sceneOf(wild).refused(),
                        HasSubstr((place == 1) == byEdges ? "1000000000 triangles"
                                                          : "1000000000 vertices"));
        }
        GltfBuilder file = sceneOf(whole);
        file.primitive()["extensions"]["KHR_draco_mesh_compression"]["attributes"]["NORMAL"] = 9;
        EXPECT_THAT(file.refused(), HasSubstr("attribute NORMAL is missing"));
    }
}

TEST(MeshTangents, CornersShareTheMeanOfTheirTrianglesUnlessTheTextureIsMirrored) {
    Mesh mesh;  // two squares whose u goes up to the edge between them and then back
    mesh.positions = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 1, 0}, {1, 1, 0}, {2, 1, 0}};
    mesh.normals.assign(6, {0, 0, 1});
    mesh.uvs[0] = {{0, 1}, {1, 1}, {0, 1}, {0, 0}, {1, 0}, {0, 0}};
    mesh.triangles = {{0, 1, 4}, {0, 4, 3}, {1, 2, 5}, {1, 5, 4}};
    const auto tangents = makeTangents(mesh, {});
    for (std::size_t t = 0; t < 4; ++t) {
        for (const V4f& tangent : tangents.at(t))
            EXPECT_EQ(tangent, t < 2 ? V4f(1, 0, 0, 1) : V4f(-1, 0, 0, -1)) << t;
    }
    // A right angle at the first vertex whose u grows along x, half of one beside it whose
    // u grows along y, and a triangle without an area in UV.
    mesh.positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 1, 0}, {-1, 0, 0}};
    mesh.uvs[0] = {{0, 0}, {1, 0}, {1, -1}, {1, -2}, {1, -2}};
    mesh.triangles = {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}};
    const auto weighed = makeTangents(mesh, {});
    const auto directionOf = [](const V4f& t) { return V3f(t.x, t.y, t.z); };
    const V3f one = directionOf(weighed[0][1]), other = directionOf(weighed[1][2]);
    EXPECT_LT(one.dot(other), 0.9F) << "they are to differ";
    EXPECT_EQ(weighed[0][0], weighed[1][0]);
    EXPECT_LT((directionOf(weighed[0][0]) - (one * 2.0F + other).normalized()).length(), 1e-6F);
    EXPECT_EQ(weighed[2][1], weighed[1][2]) << "at a vertex that another triangle tells of";
    EXPECT_EQ(directionOf(weighed[2][2]), V3f(0)) << "no triangle there tells";
    mesh.uvs[0].clear();
    EXPECT_TRUE(makeTangents(mesh, {}).empty());
}

}  // namespace
}  // namespace tavora::studio
