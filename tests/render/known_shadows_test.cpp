#include "studio/render/known_shadows.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <vector>

#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

LightsMet lightsMet(std::initializer_list<double> shares) {
    LightsMet met;
    for (std::size_t light = 0; const double share : shares) {
        if (share >= 0) met.note(light, share);
        ++light;
    }
    return met;
}

/// What is known of the first lights at a place; empty: nothing.
std::vector<double> known(const KnownShadows& shadows, std::uint32_t mesh, float distance) {
    const LightsMet* met = shadows.at(mesh, distance);
    if (met == nullptr) return {};
    return {met->share(0), met->share(1), met->share(2), met->share(3)};
}

void add(KnownShadows& shadows, int pixels, const MeshLights& met) {
    for (int i = 0; i < pixels; ++i)
        shadows.add(met);
}

TEST(KnownShadows, TellOfAMeshWhatAllWhoMetItAgreeOn) {
    KnownShadows shadows;
    add(shadows, 5, {7, 10, lightsMet({1, 0, 1, -1})});
    EXPECT_TRUE(known(shadows, 7, 10).empty());  // five may all miss an edge
    shadows.add({7, 10.1F, lightsMet({1, 0, 1, -1})});
    EXPECT_EQ(known(shadows, 7, 10), (std::vector<double>{1, 0, 1, -1}));
    shadows.add({});
    shadows.add({7, 9.9F, lightsMet({1, 0, 0, 0.5})});
    EXPECT_EQ(known(shadows, 7, 10), (std::vector<double>{1, 0, -1, -1}));
    EXPECT_TRUE(known(shadows, 8, 10).empty());
}

TEST(KnownShadows, KeepApartWhatOneMeshShowsInFrontOfItself) {
    KnownShadows shadows;
    add(shadows, 6, {7, 10, lightsMet({1, 1, 1, 1})});
    add(shadows, 7, {7, 11, lightsMet({0, 0, 0, 0})});
    EXPECT_EQ(known(shadows, 7, 10), (std::vector<double>{1, 1, 1, 1}));
    EXPECT_TRUE(known(shadows, 7, 10.5F).empty());
    EXPECT_TRUE(known(shadows, 7, 11).empty());  // slivers beside what is in front
    shadows.add({7, 11, lightsMet({0, 0, 0, 0})});
    EXPECT_EQ(known(shadows, 7, 11), (std::vector<double>{0, 0, 0, 0}));
}

TEST(KnownShadows, TellOfTheFirstLightsAndAFewMeshesOnly) {
    LightsMet met;
    met.note(LightsMet::kMost - 1, 1);
    met.note(LightsMet::kMost, 1);
    met.note(1000, 0);
    EXPECT_EQ(met.share(LightsMet::kMost - 1), 1);
    EXPECT_LT(met.share(LightsMet::kMost), 0);
    EXPECT_LT(met.share(1000), 0);
    KnownShadows shadows;
    for (std::uint32_t mesh = 0; mesh < 18; ++mesh)
        add(shadows, 9, {mesh, 1, met});
    EXPECT_NE(shadows.at(0, 1), nullptr);
    EXPECT_EQ(shadows.at(17, 1), nullptr);
}

/// Balls and a grating that throw the shadows of four lights on a wall.
struct Backyard : TestScene {
    Backyard() {
        addSurface();
        addQuad({0, 0, -2}, 4, 0);
        addObject(sphereMesh(0.8, 48, 24), 0, Imath::M44d().translate(V3d(-1, 0.4, 0)));
        addObject(sphereMesh(0.5, 48, 24), 0, Imath::M44d().translate(V3d(1.1, 0.8, 0.5)));
        for (int bar = 0; bar < 8; ++bar) {
            addObject(quadMesh(0.5), 0,
                      Imath::M44d().scale(V3d(0.12, 2.5, 1)) *
                          Imath::M44d().translate(V3d(0.3 * bar - 0.6, -0.9, -1)));
        }
        addSun({0.5, -0.3, -1}, V3d(0.3));
        addSun({-0.6, 0.2, -1}, V3d(0.2, 0.3, 0.3));
        addSun({0.1, -0.6, -1}, V3d(0.2));
        addLight(LightKind::Point, V3d(0.2)).position = {-1, 0, 5};
        rig.ambient = V3d(0.1);
    }
};

TEST(AdaptiveSampling, TakesShadowsOverWithoutLosingAnyEdge) {
    const Backyard test;
    const Camera camera = frontCamera({0, 0, 8}, 2);
    RenderOptions options = squareOptions(100);
    options.samples = 400;
    const Picture reference = renderPlain(test, camera, options);
    options.samples = 64;
    RenderStats even;
    const double evenError = meanError(renderPlain(test, camera, options, &even), reference);
    options.samples = 4;
    options.mostSamples = 64;
    RenderStats stats;
    const double error = meanError(renderPlain(test, camera, options, &stats), reference);
    const auto raysEach = [](const RenderStats& of) {
        return static_cast<double>(of.shadowRays) / static_cast<double>(of.primaryRays);
    };
    EXPECT_LT(error, 1.1 * evenError);
    EXPECT_LT(raysEach(stats), 0.5 * raysEach(even));
}

}  // namespace
}  // namespace tavora::studio
