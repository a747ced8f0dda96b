// Many rays traced at once meet what each meets alone.

#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

#include "studio/render/shadow_stream.h"
#include "studio/render/viewing_stream.h"
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

/// Squares where the faces of Embree's boxes lie.
struct Blocks : TestScene {
    SceneIndex index;
    RayScene rays;

    Blocks() : index(stacked().scene), rays(index) {}

  private:
    const TestScene& stacked() {
        addSurface().doubleSided = true;
        for (int i = 0; i < 9 * 9 * 9; ++i) {
            const V3d place(i % 9 - 4, i / 9 % 9 - 4, i / 81 - 4);
            if (i % 4 == 0) addQuad(place, 0.5, 0);
        }
        return *this;
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

/// Returns how many meet nothing.
std::size_t expectAloneTheSame(const RayScene& scene, const std::vector<Ray>& rays,
                               const std::vector<Hit>& hits) {
    std::size_t misses = 0;
    for (std::size_t i = 0; i < rays.size(); ++i) {
        Hit alone;
        if (!scene.nextHit(rays[i], {}, alone)) ++misses;
        EXPECT_EQ(hits[i], alone) << i;
    }
    return misses;
}

/// Returns how many are dimmed only.
std::size_t expectAloneTheSame(const RayScene& scene, const std::vector<Ray>& rays,
                               const std::vector<double>& shares) {
    EXPECT_EQ(shares.size(), rays.size());
    std::size_t dimmed = 0;
    for (std::size_t i = 0; i < rays.size(); ++i) {
        EXPECT_EQ(shares[i], scene.transmittance(rays[i])) << i;
        if (shares[i] > 0 && shares[i] < 1) ++dimmed;
    }
    return dimmed;
}

/// Each length of a stream takes another way through Embree.
class RayStreamsTest : public testing::TestWithParam<std::size_t> {};

TEST_P(RayStreamsTest, MeetAndLetThroughWhatEachDoesAlone) {
    const Thicket scene;
    const std::vector<Ray> rays = manyRays(scene.rays);
    EXPECT_GT(expectAloneTheSame(scene.rays, rays, hitsOf(scene.rays, rays, GetParam())), 0U);
    EXPECT_GT(expectAloneTheSame(scene.rays, rays, sharesOf(scene.rays, rays, GetParam())), 0U);
}

TEST_P(RayStreamsTest, DoTheSameInPlanesOfAxes) {
    const Blocks scene;
    const std::vector<Ray> rays = flatRays();
    expectAloneTheSame(scene.rays, rays, hitsOf(scene.rays, rays, GetParam()));
    expectAloneTheSame(scene.rays, rays, sharesOf(scene.rays, rays, GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Lengths, RayStreamsTest, testing::Values(1, 7, 64, 1000));

}  // namespace
}  // namespace tavora::studio
