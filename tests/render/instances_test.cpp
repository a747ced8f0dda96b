// Objects that share a mesh without copies of it: rays meet the same triangles.

#include <cmath>
#include <gmock/gmock.h>
#include <numeric>
#include <random>
#include <vector>

#include "studio/render/trace/first_hits.h"
#include "studio/render/trace/ray_scene.h"
#include "tests/render/test_scene.h"
#include "tests/support/refusal.h"

namespace tavora::studio {
namespace {

using Imath::M44d;
using Imath::V3d;

constexpr std::uint64_t kNoRoom = 0;

/// Rings and spheres turned, stretched and mirrored; one-sided, with holes, clear.
struct Crowd : TestScene {
    Crowd() {
        addSurface();
        Surface& holed = addSurface();
        holed.alphaMode = AlphaMode::Mask;
        holed.alphaCutoff = 0.5F;
        holed.baseColorTexture =
            TextureUse{.image = addImage(2, 1, {255, 255, 255, 255, 255, 255, 255, 0})};
        Surface& clear = addSurface();
        clear.alphaMode = AlphaMode::Blend;
        clear.baseColor.w = 0.5F;
        clear.doubleSided = true;
        const auto ball = sphereMesh(0.8, 24, 12);
        const auto ring = torusMesh(0.7, 0.3, 24, 12);
        for (Mesh* mesh : {ball.get(), ring.get()}) {
            for (const auto& position : mesh->positions)
                mesh->uvs[0].emplace_back(position.y, position.z);
        }
        for (int i = 0; i < 27; ++i) {
            M44d place;
            place.scale(V3d(1, 1 + 0.2 * (i % 4), i % 5 == 0 ? -0.7 : 0.7));
            place *= M44d().rotate(V3d(0.3 * i, 0.7 * i, 0.1 * i));
            place[3][0] = 20 + 2 * (i % 3);
            place[3][1] = 2 * (i / 3 % 3);
            place[3][2] = 2 * (i / 9);
            addObject(i % 2 == 0 ? ball : ring, i % 3, place);
        }
        addObject(ball, 0, M44d().scale(V3d(0.1, 1e-6, 0.1)));  // too flat to be an instance
    }
};

std::vector<Ray> raysThroughIt() {
    std::mt19937 numbers(3);
    std::uniform_real_distribution<double> between(-1, 1);
    const auto anywhere = [&] { return V3d(between(numbers), between(numbers), between(numbers)); };
    std::vector<Ray> rays(8000);
    for (Ray& ray : rays) {
        ray.origin = V3d(22, 2, 2) + anywhere() * 3.0;
        ray.direction = anywhere().normalized();
        ray.coneSpread = 0.001;
    }
    return rays;
}

std::vector<std::pair<std::uint32_t, std::uint32_t>> hitsAlong(const RayScene& scene,
                                                               const Ray& ray) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> hits;
    for (Hit hit; hits.size() < 100 && scene.nextHit(ray, hit, hit);)
        hits.emplace_back(hit.mesh, hit.triangle);
    return hits;
}

TEST(Instances, HitWhatCopiesHit) {
    const Crowd crowd;
    const SceneIndex index(crowd.scene);
    const RayScene copies(index);
    const RayScene instances(index, kNoRoom);
    ASSERT_TRUE(copies.geometry(0).isInstance == false && instances.geometry(0).isInstance);
    EXPECT_FALSE(instances.geometry(27).isInstance);
    const std::vector<Ray> rays = raysThroughIt();
    CameraRayBatch batch(rays.size());
    batch.coneSpread = rays[0].coneSpread;
    std::vector<std::uint32_t> numbers(rays.size());
    std::iota(numbers.begin(), numbers.end(), 0U);
    for (std::size_t i = 0; i < rays.size(); ++i) {
        batch.origins.set(i, rays[i].origin);
        batch.directions.set(i, rays[i].direction);
    }
    std::vector<Hit> together(rays.size());
    FirstHits(instances, rays.size()).find(batch, numbers, together);
    int hits = 0;
    int dimmed = 0;
    int others = 0;
    for (std::size_t i = 0; i < rays.size(); ++i) {
        const auto expected = hitsAlong(copies, rays[i]);
        const auto actual = hitsAlong(instances, rays[i]);
        const double light = instances.transmittance(rays[i]);
        hits += static_cast<int>(expected.size());
        if (light > 0 && light < 1) ++dimmed;
        // Rounding tells which triangle is met at an edge.
        if (actual != expected || light != copies.transmittance(rays[i])) ++others;
        const auto first = actual.empty() ? Hit{} : Hit{actual[0].first, actual[0].second};
        EXPECT_EQ(together[i], first) << i;
    }
    EXPECT_GT(hits, 4000);
    EXPECT_GT(dimmed, 200);
    EXPECT_LE(others, 8);
}

TEST(Instances, TakeOfTheBudgetWhatOneMeshTakesAndGiveItBack) {
    Crowd crowd;
    crowd.scene.memory = std::make_shared<MemoryBudget>("crowd.glb", 1 << 30);
    const MemoryBudget& budget = *crowd.scene.memory;
    std::uint64_t copied = 0;
    {
        const SceneIndex index(crowd.scene);
        const std::uint64_t before = budget.taken();
        {
            const RayScene copies(index);
            copied = budget.taken() - before;
        }
        EXPECT_EQ(budget.taken(), before);
        const RayScene instances(index, kNoRoom);
        EXPECT_LT(budget.taken() - before, copied / 2);
    }
    EXPECT_EQ(budget.taken(), 0U);

    crowd.scene.memory = std::make_shared<MemoryBudget>("crowd.glb", copied / 2);
    const SceneIndex index(crowd.scene);
    EXPECT_THAT(refusal([&] { const RayScene tooLarge(index); }),
                testing::AllOf(testing::StartsWith("crowd.glb: with "),
                               testing::HasSubstr("--max-memory")));
}

}  // namespace
}  // namespace tavora::studio
