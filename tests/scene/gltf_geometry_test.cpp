// Triangles, vertices and normals as files store them in their many ways.

#include <gtest/gtest.h>

#include "tests/scene/gltf_builder.h"

namespace tavora::studio {
namespace {

using Imath::V2f;
using Imath::V3f;
using Imath::V4f;

/// A square of four corners, counter-clockwise, in the plane z = 0.
const std::vector<float> kSquare = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
const std::vector<float> kSquareStrip = {0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0};

/// Twice the area of the triangles, along +z when they wind counter-clockwise.
float windingZ(const Mesh& mesh) {
    float sum = 0;
    for (const auto& t : mesh.triangles) {
        const V3f a = mesh.positions[t[0]];
        sum += (mesh.positions[t[1]] - a).cross(mesh.positions[t[2]] - a).z;
    }
    return sum;
}

TEST(GltfGeometry, StripsAndFansWindLikeLists) {
    struct Case {
        int mode;
        std::vector<float> positions;
        std::vector<std::uint16_t> indices;
        std::size_t triangles;
        float winding;
    };
    const Case cases[] = {
        {4, kSquare, {0, 1, 2, 0, 2, 3}, 2, 2},
        {5, kSquareStrip, {}, 2, 2},
        {5, kSquareStrip, {0, 1, 2, 2, 3, 1}, 2, 2},  // stitched: empty triangles go
        {6, kSquare, {}, 2, 2},
        {6, kSquare, {3, 0, 1, 2}, 2, 2},
        {4, kSquare, {0, 1, 2, 0}, 1, 1},  // a rest of no three corners goes
    };
    for (const Case& c : cases) {
        GltfBuilder file;
        const Json attributes = {{"POSITION", file.accessor(c.positions, "VEC3")}};
        Json members = {{"mode", c.mode}};
        if (!c.indices.empty()) members["indices"] = file.accessor(c.indices, "SCALAR");
        const Scene scene = file.readPrimitive(attributes, members);
        EXPECT_EQ(firstMesh(scene).triangles.size(), c.triangles) << "mode " << c.mode;
        EXPECT_FLOAT_EQ(windingZ(firstMesh(scene)), c.winding) << "mode " << c.mode;
    }
    GltfBuilder lines;
    const int corners = lines.accessor(kSquare, "VEC3");
    const Scene scene = lines.readPrimitive({{"POSITION", corners}}, {{"mode", 1}});
    EXPECT_TRUE(scene.objects.empty());
    ASSERT_EQ(scene.warnings.size(), 2U);
    EXPECT_NE(scene.warnings[0].find("points and lines are not drawn"), std::string::npos);
}

TEST(GltfGeometry, NormalsAreOfLengthOneAndFlatWhereThereAreNone) {
    GltfBuilder file;
    // Two triangles that share an edge, folded by a right angle.
    const int folded = file.accessor<float>({0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1}, "VEC3");
    const int indices = file.accessor<std::uint8_t>({0, 1, 2, 0, 2, 3}, "SCALAR");
    const Scene bare = file.readPrimitive({{"POSITION", folded}}, {{"indices", indices}});
    const Mesh& mesh = firstMesh(bare);
    EXPECT_FALSE(mesh.smooth);
    ASSERT_EQ(mesh.triangles.size(), 2U);
    for (std::size_t t = 0; t < 2; ++t) {
        for (std::uint32_t i : mesh.triangles[t])
            EXPECT_EQ(mesh.normals[i], t == 0 ? V3f(0, 0, 1) : V3f(1, 0, 0));
    }
    const auto withNormals = [](const std::vector<float>& normals) {
        GltfBuilder stored;
        const int corners = stored.accessor(GltfBuilder::corners(), "VEC3");
        return stored.readPrimitive(
            {{"POSITION", corners}, {"NORMAL", stored.accessor(normals, "VEC3")}});
    };
    const Scene flat = withNormals({0, 0, 2, 0, 0, 5, 0, 0, 0.001F});
    for (const V3f& n : firstMesh(flat).normals)
        EXPECT_EQ(n, V3f(0, 0, 1));
    EXPECT_FALSE(firstMesh(flat).smooth) << "stored normals that are the flat ones";
    const Scene smooth = withNormals({0, 0, 1, 0.6F, 0, 0.8F, 0, 0, 0});
    EXPECT_TRUE(firstMesh(smooth).smooth);
    EXPECT_EQ(firstMesh(smooth).normals[2], V3f(0, 0, 1)) << "no length: the triangle's own";

    const std::vector<std::vector<float>> withoutArea = {{1, 2, 3, 1, 2, 3, 1, 2, 3},
                                                         {0, 0, 0, 1, 1, 1, 2, 2, 2},
                                                         {0, 0, 0, 1e-30F, 0, 0, 0, 1e-30F, 0},
                                                         {0, 0, 0, 1e17F, 0, 0, 0, 1e17F, 0}};
    for (const auto& shape : withoutArea) {
        GltfBuilder thin;
        const Scene scene = thin.readPrimitive({{"POSITION", thin.accessor(shape, "VEC3")}});
        for (const V3f& n : firstMesh(scene).normals)
            EXPECT_NEAR(n.length(), 1, 1e-5);
    }
}

TEST(GltfGeometry, SparseAccessorsReplaceTheirBaseOrZeros) {
    for (const bool based : {true, false}) {
        GltfBuilder file;
        file.view(std::vector<std::uint16_t>{1, 2});
        file.view(std::vector<float>{3, 0, 0, 0, 4, 0});
        file.view(std::vector<float>{7, 7, 0, 1, 1, 1, 2, 2, 2});
        Json accessor =
            R"({"componentType": 5126, "count": 3, "type": "VEC3", "sparse": {"count": 2,
            "indices": {"bufferView": 0, "componentType": 5123}, "values": {"bufferView": 1}}})"_j;
        if (based) accessor["bufferView"] = 2;
        const Scene scene = file.readPrimitive({{"POSITION", file.add("accessors", accessor)}});
        EXPECT_EQ(firstMesh(scene).positions,
                  (std::vector{based ? V3f(7, 7, 0) : V3f(0), V3f(3, 0, 0), V3f(0, 4, 0)}));
        file.bytes[2] = 3;
        const TemporaryFolder folder;
        EXPECT_NE(refusalOf(file.write(folder)).find("element 3 of 3"), std::string::npos);
    }
}

TEST(GltfGeometry, IntegersBecomeFractionsOrStayWholeAndStridesAreStepped) {
    GltfBuilder file;
    const std::vector<std::int16_t> positions = {-32768, 0, 0, 32767, 0, 0, 0, 32767, 0};
    const std::vector<std::int8_t> normals = {0, 0, 127, 0, 0, 127, 0, 0, 127};
    const std::vector<std::uint16_t> uvs = {0, 65535, 65535, 0, 32768, 0};
    const std::vector<std::uint8_t> colors = {255, 0, 51, 255, 255, 255, 0, 0, 0};
    Json attributes = {{"POSITION", file.accessor(positions, "VEC3", true)}};
    attributes["NORMAL"] = file.accessor(normals, "VEC3", true);
    attributes["TEXCOORD_0"] = file.accessor(uvs, "VEC2", true);
    attributes["COLOR_0"] = file.accessor(colors, "VEC3", true);
    const Scene fractions = file.readPrimitive(attributes);
    EXPECT_EQ(firstMesh(fractions).positions[0], V3f(-1, 0, 0)) << "never below -1";
    EXPECT_EQ(firstMesh(fractions).positions[1], V3f(1, 0, 0));
    EXPECT_EQ(firstMesh(fractions).normals[0], V3f(0, 0, 1));
    EXPECT_EQ(firstMesh(fractions).uvs[0][0], V2f(0, 1));
    EXPECT_EQ(firstMesh(fractions).colors[0], V4f(1, 0, 0.2F, 1));

    GltfBuilder interleaved;  // position (3 shorts, 1 of padding), UV (2 shorts)
    interleaved.view<std::int16_t>({0, 0, 0, 99, 5, 6, 10, 0, 0, 99, 7, 8, 0, 20, 0, 99, 9, 10});
    interleaved.document["bufferViews"][0]["byteStride"] = 12;
    Json part = R"({"bufferView": 0, "componentType": 5122, "count": 3, "type": "VEC3"})"_j;
    interleaved.add("accessors", part);
    part.update({{"byteOffset", 8}, {"type", "VEC2"}});
    interleaved.add("accessors", part);
    const Scene whole = interleaved.readPrimitive({{"POSITION", 0}, {"TEXCOORD_1", 1}});
    EXPECT_EQ(firstMesh(whole).positions[2], V3f(0, 20, 0));
    EXPECT_TRUE(firstMesh(whole).uvs[0].empty());
    EXPECT_EQ(firstMesh(whole).uvs[1][2], V2f(9, 10));
}

TEST(GltfGeometry, MeshesAreSharedBetweenNodesAndSkippedVerticesDropped) {
    GltfBuilder file;
    std::vector<float> pool(3000, 5.0F);
    const std::vector<float> corners = GltfBuilder::corners();
    std::copy(corners.begin(), corners.end(), pool.begin() + 300);
    const int mesh = file.mesh(
        {{"POSITION", file.accessor(pool, "VEC3")}, {"NORMAL", file.accessor(pool, "VEC3")}},
        file.accessor<std::uint16_t>({100, 101, 102}, "SCALAR"));
    Json second = file.primitive(mesh);
    second["material"] = file.add("materials", {{"name", "Red"}});
    file.document["meshes"][0]["primitives"].push_back(second);
    file.root({{"mesh", mesh}});
    file.root({{"mesh", mesh}, {"translation", {5, 0, 0}}});
    const Scene scene = file.read();
    ASSERT_EQ(scene.objects.size(), 2U);
    const auto& parts = scene.objects[0]->parts;
    EXPECT_EQ(parts.at(1).mesh, scene.objects[1]->parts.at(1).mesh);
    EXPECT_EQ(firstMesh(scene).positions.size(), 3U);
    EXPECT_EQ(firstMesh(scene).positions[1], V3f(1, 0, 0));
    EXPECT_EQ(scene.bounds.max, Imath::V3d(6, 1, 0));
    EXPECT_EQ(parts[1].firstPolygon, 1) << "numbered through the object";
    EXPECT_EQ(scene.surfaces.at(static_cast<std::size_t>(parts[0].surface)).name, "Default");
    EXPECT_EQ(scene.surfaces.at(static_cast<std::size_t>(parts[1].surface)).name, "Red");
}

}  // namespace
}  // namespace tavora::studio
