// Tangents that are made for normal maps.

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

#include "studio/scene/mesh/tangents.h"

namespace tavora::studio {
namespace {

using Imath::V2f;
using Imath::V3d;
using Imath::V3f;
using Imath::V4f;

/// A strip of quads round the y axis, smooth, of `columns` columns over half a turn,
/// whose u goes up to the middle and then on or back.
Mesh halfRound(int columns, bool folded) {
    Mesh mesh;
    for (int i = 0; i <= columns; ++i) {
        const double angle = std::numbers::pi * i / columns;
        const V3f out(static_cast<float>(-std::cos(angle)), 0, static_cast<float>(std::sin(angle)));
        const auto share = static_cast<float>(i) / static_cast<float>(columns);
        for (const float y : {0.0F, 1.0F}) {
            mesh.positions.push_back(out + V3f(0, y, 0));
            mesh.normals.push_back(out);
            mesh.uvs[0].emplace_back(folded ? 1 - std::abs(1 - 2 * share) : share, 1 - y);
        }
    }
    for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(columns); ++i) {
        mesh.triangles.push_back({2 * i, 2 * i + 2, 2 * i + 1});
        mesh.triangles.push_back({2 * i + 1, 2 * i + 2, 2 * i + 3});
    }
    return mesh;
}

V3f directionOf(const V4f& tangent) {
    return {tangent.x, tangent.y, tangent.z};
}

TEST(MeshTangents, CornersShareTheMeanOfTheirTrianglesUnlessTheTextureIsMirrored) {
    constexpr int kColumns = 8;
    for (const bool folded : {false, true}) {
        const Mesh mesh = halfRound(kColumns, folded);
        const auto tangents = makeTangents(mesh, {});
        for (std::size_t t = 0; t < mesh.triangles.size(); ++t) {
            const bool mirrored = folded && t >= kColumns;
            for (std::size_t i = 0; i < 3; ++i) {
                const std::uint32_t v = mesh.triangles[t][i];
                const std::uint32_t column = v / 2;
                EXPECT_EQ(tangents[t][i].w, mirrored ? -1 : 1);
                // Round the axis, at every vertex, since each mean is of like
                // triangles: but at ends, of triangles on one side alone.
                const V3f& n = mesh.normals[v];
                const V3f along = V3f(n.z, 0, -n.x) * (mirrored ? -1.0F : 1.0F);
                const bool end = column == 0 || column == kColumns;
                EXPECT_GT(directionOf(tangents[t][i]).dot(along), 0.99999F) << t << end;
                EXPECT_NEAR(directionOf(tangents[t][i]).dot(n), 0, 1e-6) << t;
            }
        }
    }
}

TEST(MeshTangents, AnglesWeigh) {
    // A right angle at the first vertex whose u grows along x, and half of one
    // beside it whose u grows along y.
    Mesh mesh;
    mesh.positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 1, 0}};
    mesh.normals.assign(4, {0, 0, 1});
    mesh.uvs[0] = {{0, 0}, {1, 0}, {1, -1}, {1, -2}};
    mesh.triangles = {{0, 1, 2}, {0, 2, 3}};
    const auto tangents = makeTangents(mesh, {});
    const V3f one = directionOf(tangents[0][1]);
    const V3f other = directionOf(tangents[1][2]);
    EXPECT_LT(one.dot(other), 0.9F) << "they are to differ";
    EXPECT_EQ(tangents[0][0], tangents[1][0]);
    EXPECT_LT((directionOf(tangents[0][0]) - (one * 2.0F + other).normalized()).length(), 1e-6F);
}

TEST(MeshTangents, UvsThatTellNothingTakeAfterTheirNeighbours) {
    Mesh mesh = halfRound(2, false);
    mesh.uvs[0][4] = mesh.uvs[0][2];
    mesh.uvs[0][5] = mesh.uvs[0][3];
    const auto tangents = makeTangents(mesh, {});
    EXPECT_EQ(tangents[2][0], tangents[1][1]) << "at a vertex that another triangle tells of";
    EXPECT_EQ(directionOf(tangents[3][2]), V3f(0)) << "no triangle there tells";
    mesh.uvs[0].clear();
    EXPECT_TRUE(makeTangents(mesh, {}).empty());
}

}  // namespace
}  // namespace tavora::studio
