// Many rays traced at once meet what each meets alone, in the order that is worked out.

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "studio/render/hit_order.h"
#include "studio/render/ray_context.h"
#include "studio/render/shadow_stream.h"
#include "studio/render/viewing_stream.h"
#include "tests/render/room.h"

namespace tavora::studio {
namespace {

using Imath::V3d;
using Imath::V3f;

Ray rayFrom(const V3d& origin, const V3d& direction) {
    Ray ray;
    ray.origin = origin;
    ray.direction = direction.normalized();
    ray.spot = 0.001;
    ray.spread = 0.001;
    return ray;
}

/// Rays side by side along the axes through seams and rims, rays at the corners
/// of all triangles, and rays all over the place.
std::vector<Ray> manyRays(const RayScene& scene) {
    std::vector<Ray> rays;
    for (int y = -32; y <= 32; ++y) {
        for (int x = -32; x <= 32; ++x)
            rays.push_back(rayFrom({x / 16.0, y / 16.0, 5}, {0, 0, -1}));
    }
    const V3d eye(0.3, 0.7, 6);
    for (std::uint32_t mesh = 0; mesh < 7; ++mesh) {
        for (const V3f& vertex : scene.geometry(mesh).vertices)
            rays.push_back(rayFrom(eye, V3d(vertex) - eye));
    }
    std::mt19937 numbers(1);
    std::uniform_real_distribution<double> between(-1, 1);
    const auto anywhere = [&] { return V3d(between(numbers), between(numbers), between(numbers)); };
    for (int i = 0; i < 4000; ++i) {
        Ray& ray = rays.emplace_back(rayFrom(anywhere() * 3.0, anywhere()));
        ray.nearest = i % 3 == 0 ? 0.5 : 0;
        if (i % 4 == 0) ray.farthest = 2;
    }
    return rays;
}

/// Squares where the faces of Embree's boxes lie.
struct Blocks : TestScene {
    Blocks() {
        addSurface().doubleSided = true;
        for (int i = 0; i < 9 * 9 * 9; i += 4)
            addQuad(V3d(i % 9 - 4, i / 9 % 9 - 4, i / 81 - 4), 0.5, 0);
    }
};

/// Rays in planes of axes, many of them through the seams between squares.
std::vector<Ray> flatRays() {
    std::vector<Ray> rays;
    std::mt19937 numbers(1);
    std::uniform_int_distribution<int> steps(-10, 10);
    std::uniform_real_distribution<double> between(-1, 1);
    for (int i = 0; i < 10000; ++i) {
        const V3d start(steps(numbers), steps(numbers), steps(numbers));
        V3d way(between(numbers), between(numbers), between(numbers));
        way[i % 3] = 0;
        if (i % 5 == 0) way[(i + 1) % 3] = 0;
        rays.push_back(rayFrom(start * 0.5, way));
    }
    return rays;
}

/// Infinite where nothing is met.
float embreeDistance(const RayScene& scene, const Ray& ray) {
    float distance = INFINITY;
    std::uint8_t isDoubtful = 0;
    RayContext context = rayContext(scene, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    context.first = {&ray, &distance, &isDoubtful};
    RTCRayHit query{};
    setEmbreeRay(ray, 0, query.ray);
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(scene.embree(), &context.embree, &query);
    return distance;
}

std::vector<Hit> hitsOf(const RayScene& scene, const std::vector<Ray>& rays, std::size_t length) {
    ViewingStream stream(scene, length);
    std::vector<Hit> hits(rays.size());
    for (std::size_t first = 0; first < rays.size(); first += length) {
        const std::size_t count = std::min(length, rays.size() - first);
        stream.firstHits({&rays[first], count}, {&hits[first], count});
    }
    return hits;
}

std::vector<double> sharesOf(const RayScene& scene, const std::vector<Ray>& rays,
                             std::size_t length) {
    ShadowStream stream(scene, length);
    std::vector<double> shares;
    for (std::size_t first = 0; first < rays.size(); first += length) {
        stream.clear();
        for (std::size_t i = first; i < std::min(first + length, rays.size()); ++i)
            stream.add(rays[i]);
        const std::span<const double> passed = stream.trace();
        shares.insert(shares.end(), passed.begin(), passed.end());
    }
    return shares;
}

/// Returns how many meet nothing and how many are only dimmed.
std::pair<int, int> expectTogetherAsAlone(const RayScene& scene, const std::vector<Ray>& rays,
                                          std::size_t length) {
    const std::vector<Hit> hits = hitsOf(scene, rays, length);
    const std::vector<double> shares = sharesOf(scene, rays, length);
    EXPECT_EQ(shares.size(), rays.size());
    std::pair<int, int> counts;
    for (std::size_t i = 0; i < rays.size(); ++i) {
        Hit alone;
        if (!scene.nextHit(rays[i], {}, alone)) ++counts.first;
        EXPECT_EQ(hits[i], alone) << i;
        EXPECT_EQ(shares[i], scene.transmittance(rays[i])) << i;
        if (shares[i] > 0 && shares[i] < 1) ++counts.second;
    }
    return counts;
}

/// Each length of a stream takes another way through Embree.
TEST(RayStreams, MeetAndLetThroughWhatEachRayDoesAlone) {
    const Room room;
    const SceneIndex roomIndex(room.scene);
    const RayScene inRoom(roomIndex);
    const Blocks blocks;
    const SceneIndex blocksIndex(blocks.scene);
    const RayScene amongBlocks(blocksIndex);
    for (const std::size_t length : {1U, 7U, 64U, 1000U}) {
        const auto [missed, dimmed] = expectTogetherAsAlone(inRoom, manyRays(inRoom), length);
        EXPECT_GT(missed, 0);
        EXPECT_GT(dimmed, 0);
        expectTogetherAsAlone(amongBlocks, flatRays(), length);
    }
}

/// So near each other that rounding says which is first.
TEST(HitOrder, GoesThroughAllSurfacesInOnePlaceOnceEach) {
    TestScene scene;
    scene.addSurface().doubleSided = true;
    for (int i = 0; i < 5; ++i)
        scene.addQuad(V3d(0, 0, 1e-7 * (i % 3)), 1.0, 0);
    const SceneIndex index(scene.scene);
    const RayScene rays(index);
    const V3d direction(0.3, -0.2, -1);
    for (int i = 0; i < 400; ++i) {
        const V3d aim(0.03 * (i % 20) - 0.3, 0.03 * (i / 20.0) - 0.3, 0);
        const Ray ray = rayFrom(aim - direction.normalized() * 7.0, direction);
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

/// Triangles of all sizes, met at all angles down to a thousandth: what is taken for a
/// doubtful order covers four times what rounding makes of Embree's distances.
TEST(HitOrder, DistancesDifferFromThoseOfEmbreeInTheLastPlacesOnly) {
    std::mt19937 numbers(1);
    std::uniform_real_distribution<float> between(-1, 1);
    const auto anywhere = [&] { return V3f(between(numbers), between(numbers), between(numbers)); };
    int hits = 0;
    for (int i = 0; i < 300; ++i) {
        const float size = std::exp2(4 * between(numbers));
        const V3f middle = anywhere() * 20.0F;
        auto mesh = std::make_shared<Mesh>();
        for (int corner = 0; corner < 3; ++corner)
            mesh->positions.push_back(middle + anywhere() * size);
        const std::vector<V3f>& at = mesh->positions;
        mesh->normals.assign(3, (at[1] - at[0]).cross(at[2] - at[0]).normalized());
        mesh->triangles = {{0, 1, 2}};
        TestScene triangle;
        triangle.addSurface().doubleSided = true;
        triangle.addObject(mesh, 0);
        const SceneIndex index(triangle.scene);
        const RayScene scene(index);
        for (int j = 0; j < 50; ++j) {
            const float a = std::abs(between(numbers)) / 2;
            const float b = std::abs(between(numbers)) / 2;
            const V3f aim = at[0] * (1 - a - b) + at[1] * a + at[2] * b;
            V3f way = anywhere();
            const V3f& normal = mesh->normals[0];
            if (j % 2 == 0) way += normal * (std::exp2(-10.0F) - 1) * normal.dot(way);
            const Ray ray = rayFrom(V3d(aim - way * 30.0F), V3d(way));
            const float rough = embreeDistance(scene, ray);
            if (std::isinf(rough)) continue;
            ++hits;
            const float worked =
                hitDistance(V3f(ray.origin), embreeDirection(ray.direction), {at[0], at[1], at[2]});
            EXPECT_NEAR(worked, rough, rough * kDistanceDoubt / 4) << i << ' ' << j;
        }
    }
    EXPECT_GT(hits, 10000);
}

}  // namespace
}  // namespace tavora::studio
