// What the shading normal of a surface with a normal map is.

#include <cmath>
#include <gtest/gtest.h>

#include "studio/render/sample_shader.h"
#include "tests/render/room.h"

namespace tavora::studio {
namespace {

using Imath::M44d;
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

/// A mesh with tangents, and one texel all over it that says `mapped`.
struct Mapped : TestScene {
    Mapped(const std::shared_ptr<const Mesh>& mesh, const V3d& mapped, const M44d& toWorld) {
        Surface& surface = addSurface();
        surface.doubleSided = true;
        surface.normalTexture.emplace().isData = true;
        surface.normalTexture->image =
            addImage(1, 1, {byteOf(mapped.x), byteOf(mapped.y), byteOf(mapped.z), 255});
        addObject(mesh, 0, toWorld);
    }
};

/// A quad that faces +z.
struct Slate : Mapped {
    explicit Slate(const V3d& mapped, const M44d& toWorld = {})
        : Mapped(tangentQuadMesh(1), mapped, toWorld) {}

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

/// Tangents of a ball that no UVs would give: askew, and mirrored if `handedness` is -1.
std::vector<CornerTangents> skewTangents(const Mesh& ball, float handedness) {
    std::vector<CornerTangents> all(ball.triangles.size());
    for (std::size_t t = 0; t < all.size(); ++t) {
        for (std::size_t i = 0; i < 3; ++i) {
            const V3f normal = ball.normals[ball.triangles[t][i]];
            const V3f tangent = normal.cross(V3f(0.3F, 1, 0.2F)).normalized();
            all[t][i] = {tangent.x, tangent.y, tangent.z, handedness};
        }
    }
    return all;
}

/// The texel's direction in the frame that glTF makes of the corners': blended, and not
/// made straight or of unit length again.
V3d framed(const Mesh& mesh, const SurfacePoint& point, const V3d& mapped) {
    const std::uint32_t triangle = point.facet->key.triangle;
    V3d normal(0);
    V3d tangent(0);
    for (std::size_t i = 0; i < 3; ++i) {
        const V4f& t = mesh.tangents[triangle][i];
        normal += V3d(mesh.normals[mesh.triangles[triangle][i]]) * point.weights[i];
        tangent += V3d(V3f(t.x, t.y, t.z)) * point.weights[i];
    }
    const double handedness = static_cast<double>(mesh.tangents[triangle][0].w);
    const V3d bitangent = normal.cross(tangent) * handedness;
    return (tangent * mapped.x + bitangent * mapped.y + normal * mapped.z).normalized();
}

TEST(NormalMap, FollowsTheFramesOfRoundMeshesAlsoInMirroredObjects) {
    const V3d mapped(0.48, 0.6, 0.64);
    for (const float handedness : {1.0F, -1.0F}) {
        const auto ball = sphereMesh(1, 12, 8);
        ball->tangents = skewTangents(*ball, handedness);
        for (const double up : {1.0, -1.0}) {
            const Mapped test(ball, mapped, M44d().scale(V3d(1, up, 1)));
            const SceneIndex index(test.scene);
            const RayScene rays(index);
            for (int i = 0; i < 500; ++i) {
                const double height = (i + 0.5) / 250 - 1;
                const double wide = std::sqrt(1 - height * height);
                const V3d out(wide * std::cos(2.4 * i), height, wide * std::sin(2.4 * i));
                Facet facet;
                const SurfacePoint point = pointAt(rays, out * 3, -out, facet);
                expectNear(point.normal, framed(*ball, point, mapped) * V3d(1, up, 1), "round");
            }
        }
    }
}

}  // namespace
}  // namespace tavora::studio
