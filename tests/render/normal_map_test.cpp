// What the shading normal of a surface with a normal map is.

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

#include "studio/render/sample_shader.h"
#include "studio/scene/mesh/tangents.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::M44d;
using Imath::V2d;
using Imath::V3d;
using Imath::V3f;
using Imath::V4f;

/// The normal that is shaded, and the geometry there, where a ray meets the scene.
SurfacePoint pointAt(const RayScene& scene, const V3d& origin, const V3d& direction, Facet& facet) {
    Ray ray;
    ray.origin = origin;
    ray.direction = direction.normalized();
    MetSurface met;
    EXPECT_TRUE(scene.nextHit(ray, {}, met.hit));
    facet = facetAt(scene, ray, met.hit);
    EXPECT_TRUE(meet(scene, facet, ray, met));
    return met.point;
}

std::uint8_t byteOf(double part) {
    return static_cast<std::uint8_t>(std::lround(255 * (part + 1) / 2));
}

/// One quad that faces +z with one texel all over it, which says `mapped`.
struct Slate : TestScene {
    explicit Slate(const V3d& mapped, const M44d& toWorld = {}) {
        Surface& surface = addSurface();
        surface.doubleSided = true;
        surface.normalTexture.emplace().isData = true;
        surface.normalTexture->image =
            addImage(1, 1, {byteOf(mapped.x), byteOf(mapped.y), byteOf(mapped.z), 255});
        const auto mesh = quadMesh(1);
        mesh->tangents = makeTangents(*mesh, *surface.normalTexture);
        addObject(mesh, 0, toWorld);
    }

    V3d normalFrom(const V3d& eye) const {
        const SceneIndex index(scene);
        const RayScene rays(index);
        Facet facet;
        return pointAt(rays, eye, -eye + V3d(0.1, 0.2, 0), facet).normal;
    }
};

void expectNear(const V3d& actual, const V3d& expected, const char* what) {
    EXPECT_LT((actual - expected.normalized()).length(), 0.01) << what << ": " << actual;
}

TEST(NormalMap, PointsAlongTheImageAndTurnsWithTheSurface) {
    const V3d front(0, 0, 3);
    const V3d mapped = V3d(0.48, 0.6, 0.64);
    expectNear(Slate(mapped).normalFrom(front), mapped, "green is up in the image, red right");
    expectNear(Slate(mapped).normalFrom(-front), -mapped, "the back is the front from behind");
    M44d mirrored;
    mirrored.scale(V3d(-1, 1, 1));
    expectNear(Slate(mapped, mirrored).normalFrom(front), V3d(-0.48, 0.6, 0.64), "mirrored");
    expectNear(Slate(mapped, mirrored).normalFrom(-front), V3d(0.48, -0.6, -0.64), "its back");
    M44d wide;
    wide.scale(V3d(4, 1, 1));
    expectNear(Slate(mapped, wide).normalFrom(front), mapped, "a frame is no shape");
    Slate strong(mapped);
    strong.scene.surfaces[0].normalScale = 2;
    expectNear(strong.normalFrom(front), V3d(0.96, 1.2, 0.64), "scaled");
    strong.scene.surfaces[0].normalMap = false;
    EXPECT_EQ(strong.normalFrom(front), V3d(0, 0, 1));
    expectNear(Slate(V3d(0.48, 0.6, -1)).normalFrom(front), mapped, "of two channels");
}

/// A ball of flat triangles with UVs round it, or mirrored the other way round, and
/// from pole to pole.
std::shared_ptr<Mesh> flatBall(int segments, int rings, bool mirrored) {
    auto mesh = sphereMesh(1, segments, rings);
    const std::shared_ptr<Mesh> from = std::exchange(mesh, std::make_shared<Mesh>());
    for (const auto& triangle : from->triangles) {
        const V3f a = from->positions[triangle[0]];
        const V3f flat =
            (from->positions[triangle[1]] - a).cross(from->positions[triangle[2]] - a).normalized();
        const auto first = static_cast<std::uint32_t>(mesh->positions.size());
        for (const std::uint32_t i : triangle) {
            const auto columns = static_cast<std::uint32_t>(segments) + 1;
            const float u = static_cast<float>(i % columns) / static_cast<float>(segments);
            mesh->positions.push_back(from->positions[i]);
            mesh->normals.push_back(flat);
            mesh->uvs[0].emplace_back(mirrored ? 1 - u : u,
                                      static_cast<float>(i / columns) / static_cast<float>(rings));
        }
        mesh->triangles.push_back({first, first + 1, first + 2});
    }
    return mesh;
}

/// Of a place in UV, its weights in a triangle; one is negative outside.
std::array<double, 3> weightsAt(const Mesh& mesh, const std::array<std::uint32_t, 3>& t,
                                const V2d& uv) {
    const V2d a(mesh.uvs[0][t[0]]);
    const V2d b = V2d(mesh.uvs[0][t[1]]) - a;
    const V2d c = V2d(mesh.uvs[0][t[2]]) - a;
    const V2d p = uv - a;
    const double area = b.x * c.y - b.y * c.x;
    const double v = (p.x * c.y - p.y * c.x) / area;
    const double w = (b.x * p.y - b.y * p.x) / area;
    return {1 - v - w, v, w};
}

/// The texel that turns the flat normal into that of the ball around the mesh, in the
/// frame that glTF prescribes.
V3d baked(const Mesh& mesh, std::size_t triangle, const std::array<double, 3>& weights) {
    const auto& corners = mesh.triangles[triangle];
    V3d position(0);
    V3d tangent(0);
    for (std::size_t i = 0; i < 3; ++i) {
        const V4f& t = mesh.tangents[triangle][i];
        position += V3d(mesh.positions[corners[i]]) * weights[i];
        tangent += V3d(V3f(t.x, t.y, t.z)) * weights[i];
    }
    const V3d normal(mesh.normals[corners[0]]);
    const V3d bitangent = normal.cross(tangent) * static_cast<double>(mesh.tangents[triangle][0].w);
    const V3d wanted = position.normalized();
    return V3d(wanted.dot(tangent) / tangent.length2(), wanted.dot(bitangent) / bitangent.length2(),
               wanted.dot(normal))
        .normalized();
}

constexpr int kMapSize = 512;

std::vector<std::uint8_t> bakedMap(const Mesh& mesh) {
    std::vector<std::uint8_t> rgba(std::size_t{4} * kMapSize * kMapSize, 128);
    for (std::size_t t = 0; t < mesh.triangles.size(); ++t) {
        Imath::Box2d box;
        for (const std::uint32_t i : mesh.triangles[t])
            box.extendBy(V2d(mesh.uvs[0][i]) * kMapSize);
        for (int y = static_cast<int>(box.min.y); y < box.max.y; ++y) {
            for (int x = static_cast<int>(box.min.x); x < box.max.x; ++x) {
                const auto weights =
                    weightsAt(mesh, mesh.triangles[t], V2d(x + 0.5, y + 0.5) / kMapSize);
                if (*std::min_element(weights.begin(), weights.end()) < 0) continue;
                const V3d texel = baked(mesh, t, weights);
                std::uint8_t* to = &rgba[4 * (static_cast<std::size_t>(y) * kMapSize +
                                              static_cast<std::size_t>(x))];
                for (int c = 0; c < 3; ++c)
                    to[c] = byteOf(texel[c]);
            }
        }
    }
    return rgba;
}

/// Mean and largest angle, in degrees, between shading normals and those of the ball
/// around the mesh; the places near the edges of triangles, where texels of two
/// frames meet, are left out.
V2d angleToBall(const std::shared_ptr<Mesh>& mesh, const M44d& toWorld) {
    TestScene test;
    Surface& surface = test.addSurface();
    surface.normalTexture.emplace().isData = true;
    surface.normalTexture->image = test.addImage(kMapSize, kMapSize, bakedMap(*mesh));
    test.addObject(mesh, 0, toWorld);
    const SceneIndex index(test.scene);
    const RayScene scene(index);
    double sum = 0;
    double most = 0;
    int count = 0;
    for (int i = 0; i < 4000; ++i) {
        const double turn = i * 2.399963;
        const double height = (i + 0.5) / 2000 - 1;
        const double wide = std::sqrt(1 - height * height);
        const V3d out(wide * std::cos(turn), height, wide * std::sin(turn));
        Facet facet;
        const SurfacePoint point = pointAt(scene, out * 3, -out, facet);
        if (*std::min_element(point.weights, point.weights + 3) < 0.1) continue;
        const double angle =
            std::acos(std::min(point.normal.dot(point.position.normalized()), 1.0)) * 180 / M_PI;
        most = std::max(most, angle);
        sum += angle;
        ++count;
    }
    return {sum / count, most};
}

/// A byte is 0.45 degrees, a texel 0.7 round the ball: what is interpolated between
/// four of both stays within 0.4, as long as frames are right to the bit.
TEST(NormalMap, MapsOfABallMakeFlatTrianglesRound) {
    for (const bool mirrored : {false, true}) {
        const auto mesh = flatBall(12, 8, mirrored);
        TextureUse use;
        mesh->tangents = makeTangents(*mesh, use);
        M44d upsideDown;
        upsideDown.scale(V3d(1, -1, 1));
        for (const M44d& toWorld : {M44d(), upsideDown}) {
            const V2d angle = angleToBall(mesh, toWorld);
            EXPECT_LT(angle.x, 0.3) << mirrored;
            EXPECT_LT(angle.y, 0.8) << mirrored;
        }
        // Tangents that a file brings, turned by 40 degrees in the plane.
        for (std::size_t t = 0; t < mesh->triangles.size(); ++t) {
            const V3f normal = mesh->normals[mesh->triangles[t][0]];
            for (V4f& tangent : mesh->tangents[t]) {
                const V3f u(tangent.x, tangent.y, tangent.z);
                const V3f turned = u * 0.766F + normal.cross(u) * 0.643F;
                tangent = {turned.x, turned.y, turned.z, tangent.w};
            }
        }
        EXPECT_LT(angleToBall(mesh, {}).x, 0.3) << mirrored;
    }
}

}  // namespace
}  // namespace tavora::studio
