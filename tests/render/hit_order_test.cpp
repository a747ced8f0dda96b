// Hits come in the order that is worked out, and Embree's distances are near it.

#include "studio/render/hit_order.h"

#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <random>

#include "studio/render/ray_context.h"
#include "studio/render/ray_scene.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::V3d;
using Imath::V3f;
using Corners = std::array<V3f, 3>;

/// One triangle, seen from both sides.
struct OneTriangle : TestScene {
    SceneIndex index;
    RayScene rays;

    explicit OneTriangle(const Corners& corners) : index(with(corners).scene), rays(index) {}

    /// As Embree has it; infinite where the triangle is missed.
    float roughDistance(const Ray& ray) const {
        float distance = INFINITY;
        std::uint8_t isDoubtful = 0;
        RayContext context = rayContext(rays, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
        context.first = {&ray, &distance, &isDoubtful};
        RTCRayHit query{};
        setEmbreeRay(ray, 0, query.ray);
        query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
        rtcIntersect1(rays.embree(), &context.embree, &query);
        return distance;
    }

  private:
    const TestScene& with(const Corners& corners) {
        addSurface().doubleSided = true;
        auto mesh = std::make_shared<Mesh>();
        mesh->positions.assign(corners.begin(), corners.end());
        mesh->normals.assign(3, V3f(0, 0, 1));
        mesh->triangles = {{0, 1, 2}};
        addObject(std::move(mesh), 0);
        return *this;
    }
};

/// Triangles of all sizes, met at all angles down to a thousandth.
TEST(HitOrder, DistancesDifferFromThoseOfEmbreeInTheLastPlacesOnly) {
    std::mt19937 numbers(1);
    std::uniform_real_distribution<float> between(-1, 1);
    const auto anywhere = [&] { return V3f(between(numbers), between(numbers), between(numbers)); };
    int hits = 0;
    for (int i = 0; i < 300; ++i) {
        const float size = std::exp2(4 * between(numbers));
        const V3f middle = anywhere() * 20.0F;
        const Corners corners{middle + anywhere() * size, middle + anywhere() * size,
                              middle + anywhere() * size};
        const OneTriangle triangle(corners);
        const V3f normal = (corners[1] - corners[0]).cross(corners[2] - corners[0]).normalized();
        for (int j = 0; j < 50; ++j) {
            const float a = std::abs(between(numbers)) / 2;
            const float b = std::abs(between(numbers)) / 2;
            const V3f aim = corners[0] * (1 - a - b) + corners[1] * a + corners[2] * b;
            V3f way = anywhere();
            if (j % 2 == 0) way += normal * (std::exp2(-10.0F) - 1) * normal.dot(way);
            Ray ray;
            ray.origin = V3d(aim - way * 30.0F);
            ray.direction = V3d(way).normalized();
            const float rough = triangle.roughDistance(ray);
            if (std::isinf(rough)) continue;
            ++hits;
            const float worked =
                hitDistance(V3f(ray.origin), embreeDirection(ray.direction), corners);
            EXPECT_NEAR(worked, rough, rough * kDistanceDoubt / 4) << i << ' ' << j;
        }
    }
    EXPECT_GT(hits, 10000);
}

/// So near each other that rounding says which is first.
TEST(HitOrder, GoesThroughAllSurfacesInOnePlaceOnceEach) {
    TestScene scene;
    scene.addSurface().doubleSided = true;
    for (int i = 0; i < 5; ++i)
        scene.addQuad(V3d(0, 0, 1e-7 * (i % 3)), 1.0, 0);
    const SceneIndex index(scene.scene);
    const RayScene rays(index);
    Ray ray;
    ray.direction = V3d(0.3, -0.2, -1).normalized();
    for (int i = 0; i < 400; ++i) {
        ray.origin = V3d(0.03 * (i % 20) - 0.3, 0.03 * (i / 20.0) - 0.3, 0) - ray.direction * 7.0;
        HitKey before;
        int met = 0;
        for (Hit hit; rays.nextHit(ray, hit, hit); ++met) {
            const HitKey key{hitDistance(V3f(ray.origin), embreeDirection(ray.direction),
                                         cornersOf(rays.geometry(hit.mesh), hit.triangle)),
                             hit.mesh, hit.triangle};
            EXPECT_GT(key, before) << i;
            before = key;
        }
        EXPECT_EQ(met, 5) << i;
    }
}

}  // namespace
}  // namespace tavora::studio
