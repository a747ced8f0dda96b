// Compressed meshes: what comes out, and what damage does.

#include <draco/compression/encode.h>
#include <draco/mesh/triangle_soup_mesh_builder.h>
#include <gmock/gmock.h>

#include "tests/scene/gltf_builder.h"

namespace tavora::studio {
namespace {

using Imath::V3f;
using ::testing::HasSubstr;

/// A square of two triangles in z = 1 with normals along z and eight-bit
/// colours, one vertex in each corner of each triangle.
std::vector<std::uint8_t> compressedSquare(bool byEdges) {
    const float corners[2][3][3] = {{{0, 0, 1}, {1, 0, 1}, {1, 1, 1}},
                                    {{0, 0, 1}, {1, 1, 1}, {0, 1, 1}}};
    const float normal[3] = {0, 0, 1};
    const std::uint8_t color[3] = {255, 51, 0};
    draco::TriangleSoupMeshBuilder builder;
    builder.Start(2);
    const int position =
        builder.AddAttribute(draco::GeometryAttribute::POSITION, 3, draco::DT_FLOAT32);
    const int normals =
        builder.AddAttribute(draco::GeometryAttribute::NORMAL, 3, draco::DT_FLOAT32);
    const int colors = builder.AddAttribute(draco::GeometryAttribute::COLOR, 3, draco::DT_UINT8);
    for (std::uint32_t f = 0; f < 2; ++f) {
        const draco::FaceIndex face(f);
        builder.SetAttributeValuesForFace(position, face, corners[f][0], corners[f][1],
                                          corners[f][2]);
        builder.SetAttributeValuesForFace(normals, face, normal, normal, normal);
        builder.SetAttributeValuesForFace(colors, face, color, color, color);
    }
    draco::Encoder encoder;
    encoder.SetEncodingMethod(byEdges ? draco::MESH_EDGEBREAKER_ENCODING
                                      : draco::MESH_SEQUENTIAL_ENCODING);
    draco::EncoderBuffer buffer;
    EXPECT_TRUE(encoder.EncodeMeshToBuffer(*builder.Finalize(), &buffer).ok());
    return {buffer.data(), buffer.data() + buffer.size()};
}

/// A scene with that data as its only mesh.
GltfBuilder sceneOf(const std::vector<std::uint8_t>& data) {
    GltfBuilder file;
    file.document["accessors"] =
        R"([{"componentType": 5126, "count": 4, "type": "VEC3"},
            {"componentType": 5126, "count": 4, "type": "VEC3"},
            {"componentType": 5121, "count": 4, "type": "VEC3", "normalized": true},
            {"componentType": 5123, "count": 4, "type": "SCALAR"}])"_j;
    const int mesh = file.mesh({{"POSITION", 0}, {"NORMAL", 1}, {"COLOR_0", 2}}, 3);
    file.primitive(mesh)["extensions"]["KHR_draco_mesh_compression"] = {
        {"bufferView", file.view(data)},
        {"attributes", {{"POSITION", 0}, {"NORMAL", 1}, {"COLOR_0", 2}}}};
    file.document["extensionsRequired"] = {"KHR_draco_mesh_compression"};
    file.root({{"mesh", mesh}});
    return file;
}

TEST(GltfDraco, BothMethodsGiveTheMeshBack) {
    for (bool byEdges : {false, true}) {
        const Scene scene = sceneOf(compressedSquare(byEdges)).read();
        const Mesh& mesh = firstMesh(scene);
        ASSERT_EQ(mesh.triangles.size(), 2U);
        float area = 0;
        for (const auto& t : mesh.triangles) {
            const V3f a = mesh.positions[t[0]];
            area += (mesh.positions[t[1]] - a).cross(mesh.positions[t[2]] - a).z / 2;
        }
        EXPECT_NEAR(area, 1, 1e-3);
        EXPECT_NEAR(scene.bounds.min.z, 1, 1e-3);
        EXPECT_NEAR(mesh.normals[0].z, 1, 1e-3);
        // The accessor says that the bytes are fractions; the data does not.
        EXPECT_EQ(mesh.colors.at(0), Imath::V4f(1, 0.2F, 0, 1));
    }
}

TEST(GltfDraco, DamagedDataIsRefusedOrReadButNeverMore) {
    const TemporaryFolder folder;
    for (bool byEdges : {false, true}) {
        const std::vector<std::uint8_t> whole = compressedSquare(byEdges);
        for (std::size_t size = 1; size < whole.size(); size += 5) {
            const std::vector<std::uint8_t> prefix(
                whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_NE(refusalOf(sceneOf(prefix).writeBinary(folder)), "") << size;
        }
        for (std::size_t i = 0; i < whole.size(); i += 2) {
            std::vector<std::uint8_t> damaged = whole;
            damaged[i] ^= 0xffU;
            const std::string text = refusalOf(sceneOf(damaged).writeBinary(folder));
            EXPECT_EQ(text.find('\n'), std::string::npos);
        }
    }
}

TEST(GltfDraco, WildCountsAndStrangeAttributesAreRefused) {
    const TemporaryFolder folder;
    for (bool byEdges : {false, true}) {
        std::vector<std::uint8_t> data = compressedSquare(byEdges);
        // The first count follows eleven bytes, and one more on how edges are walked.
        const std::ptrdiff_t at = byEdges ? 12 : 11;
        data.erase(data.begin() + at);
        data.insert(data.begin() + at, {0x80, 0x94, 0xeb, 0xdc, 0x03});  // a billion
        EXPECT_THAT(refusalOf(sceneOf(data).write(folder)), HasSubstr("1000000000"));
    }
    GltfBuilder file = sceneOf(compressedSquare(true));
    file.primitive(0)["extensions"]["KHR_draco_mesh_compression"]["attributes"]["NORMAL"] = 9;
    EXPECT_THAT(refusalOf(file.write(folder)), HasSubstr("attribute NORMAL is missing"));
}

}  // namespace
}  // namespace tavora::studio
