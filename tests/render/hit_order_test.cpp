// Hits come in the order that is worked out, and Embree's distances are near it.

#include "studio/render/hit_order.h"

#include <cmath>
#include <embree3/rtcore.h>
#include <gtest/gtest.h>
#include <random>

#include "studio/render/ray_context.h"
#include "studio/render/ray_scene.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::V3d;
using Imath::V3f;
using Corners = std::array<V3f, 3>;

/// How far the plane of one triangle lies along a ray by the kernels that an Embree
/// device takes; negative where the triangle is missed.
class OneTriangle {
  public:
    OneTriangle(const char* device, const Corners& corners)
        : device_(rtcNewDevice(device)), scene_(rtcNewScene(device_)), corners_(corners) {
        rtcSetSceneFlags(scene_, RTC_SCENE_FLAG_ROBUST);
        RTCGeometry geometry = rtcNewGeometry(device_, RTC_GEOMETRY_TYPE_TRIANGLE);
        auto* vertices = static_cast<V3f*>(rtcSetNewGeometryBuffer(
            geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, sizeof(V3f), 3));
        std::copy(corners.begin(), corners.end(), vertices);
        auto* numbers = static_cast<unsigned*>(rtcSetNewGeometryBuffer(
            geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, 3 * sizeof(unsigned), 1));
        for (unsigned i = 0; i < 3; ++i)
            numbers[i] = i;
        rtcCommitGeometry(geometry);
        rtcAttachGeometry(scene_, geometry);
        rtcReleaseGeometry(geometry);
        rtcCommitScene(scene_);
    }
    ~OneTriangle() {
        rtcReleaseScene(scene_);
        rtcReleaseDevice(device_);
    }
    OneTriangle(const OneTriangle&) = delete;
    OneTriangle& operator=(const OneTriangle&) = delete;

    float distance(const V3f& origin, const V3f& direction) const {
        RTCIntersectContext context;
        rtcInitIntersectContext(&context);
        RTCRayHit query{};
        query.ray = {origin.x,    origin.y, origin.z, 0,   direction.x, direction.y,
                     direction.z, 0,        INFINITY, ~0U, 0,           0};
        query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
        rtcIntersect1(scene_, &context, &query);
        return query.hit.geomID == RTC_INVALID_GEOMETRY_ID ? -1 : query.ray.tfar;
    }

  private:
    RTCDevice device_;
    RTCScene scene_;
    Corners corners_;
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
        const OneTriangle triangle("max_isa=avx", corners);
        const V3f normal = (corners[1] - corners[0]).cross(corners[2] - corners[0]).normalized();
        for (int j = 0; j < 50; ++j) {
            const float a = std::abs(between(numbers)) / 2;
            const float b = std::abs(between(numbers)) / 2;
            const V3f aim = corners[0] * (1 - a - b) + corners[1] * a + corners[2] * b;
            V3f way = anywhere();
            if (j % 2 == 0) way += normal * (std::exp2(-10.0F) - 1) * normal.dot(way);
            const V3f origin = aim - way * 30.0F;
            const float found = triangle.distance(origin, way.normalized());
            if (found < 0) continue;
            ++hits;
            const float worked = hitDistance(origin, way.normalized(), corners);
            EXPECT_NEAR(worked, found, found * kDistanceDoubt / 4) << i << ' ' << j;
        }
    }
    EXPECT_GT(hits, 10000);
}

/// Squares so near each other that rounding says which is first: alone a ray meets
/// all, each once, in the order that hitDistance() gives.
TEST(HitOrder, IsTheSameWhoeverIsAsked) {
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
