// Many rays traced at once meet what each meets alone.

#include "studio/render/ray_streams.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

/// Round, clear, cut-out, single-sided, and two squares in one place.
struct Thicket : TestScene {
    SceneIndex index;
    RayScene rays;

    Thicket() : index(planted().scene), rays(index) {}

  private:
    const TestScene& planted() {
        addSurface();
        Surface& leaf = addSurface();
        leaf.alphaMode = AlphaMode::Mask;
        leaf.doubleSided = true;
        leaf.baseColorTexture = TextureUse{};
        leaf.baseColorTexture->image =
            addImage(2, 2, {0, 200, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 90, 200, 0, 255});
        Surface& glass = addSurface();
        glass.alphaMode = AlphaMode::Blend;
        glass.baseColor.w = 0.3F;
        addObject(sphereMesh(1, 24, 12), 0);
        addObject(sphereMesh(1.3, 24, 12), 2, Imath::M44d().translate(V3d(-1, 0.4, 0.2)));
        addQuad({0.5, 0.2, 1.5}, 1, 1);
        addQuad({0, 0, -1.5}, 3, 2);
        addQuad({0.2, 0.1, -2}, 2, 0);
        addQuad({-0.2, -0.1, -2}, 2, 0);
        return *this;
    }
};

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
    for (std::uint32_t mesh = 0; mesh < 6; ++mesh) {
        for (const Imath::V3f& vertex : scene.geometry(mesh).vertices)
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

/// Each length of a stream takes another way through Embree.
class RayStreamsTest : public testing::TestWithParam<std::size_t> {
  protected:
    Thicket scene;
    RayStreams streams{scene.rays};
    std::vector<Ray> rays = manyRays(scene.rays);

    /// Calls `trace(first, count)` until all rays are through.
    template <typename Trace>
    void inStreams(const Trace& trace) {
        for (std::size_t first = 0; first < rays.size(); first += GetParam())
            trace(first, std::min(GetParam(), rays.size() - first));
    }
};

TEST_P(RayStreamsTest, MeetWhatEachMeetsAlone) {
    std::vector<HitKey> hits(rays.size());
    inStreams([&](std::size_t first, std::size_t count) {
        streams.firstHits({&rays[first], count}, {&hits[first], count});
    });
    std::size_t misses = 0;
    for (std::size_t i = 0; i < rays.size(); ++i) {
        HitKey alone;
        if (scene.rays.nextHit(rays[i], {}, alone)) {
            ASSERT_EQ(hits[i].distance, alone.distance) << i;
            ASSERT_EQ(hits[i].mesh, alone.mesh) << i;
            ASSERT_EQ(hits[i].triangle, alone.triangle) << i;
        } else {
            ASSERT_EQ(hits[i].distance, std::numeric_limits<float>::infinity()) << i;
            ++misses;
        }
    }
    EXPECT_GT(misses, 0U);
}

TEST_P(RayStreamsTest, LetThroughWhatEachLetsThroughAlone) {
    std::vector<double> shares(rays.size());
    inStreams([&](std::size_t first, std::size_t count) {
        streams.transmittances({&rays[first], count}, {&shares[first], count});
    });
    std::size_t dimmed = 0;
    for (std::size_t i = 0; i < rays.size(); ++i) {
        ASSERT_EQ(shares[i], scene.rays.transmittance(rays[i])) << i;
        if (shares[i] > 0 && shares[i] < 1) ++dimmed;
    }
    EXPECT_GT(dimmed, 0U);
}

INSTANTIATE_TEST_SUITE_P(Lengths, RayStreamsTest, testing::Values(1, 7, 64, 1000));

}  // namespace
}  // namespace tavora::studio
