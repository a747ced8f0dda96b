// Surfaces without a shader: light, shadows, clear and cut-out surfaces, with
// answers that can be worked out on paper.

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <set>

#include "studio/util/color.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

constexpr double kClose = 2e-6;
const V3d kDown(0, 0, -1);  // straight at a quad

TEST(PlainShading, ScattersLightByTheCosine) {
    QuadScene test;
    test.surface().baseColor = {0.5F, 0.25F, 1, 1};
    test.lightSet.ambient = {0.25, 0.25, 0.25};
    const double angle = std::numbers::pi / 3;
    test.addSun({std::sin(angle), 0, -std::cos(angle)});
    const V3d base(toEncoded(0.5), toEncoded(0.25), 1);
    expectColor(colorOf(test), base * 0.75);
    test.addSun({0, 0, 1});  // from behind
    expectColor(colorOf(test), base * 0.75);
    test.addLight(LightKind::Point, {0.25, 0.25, 0}).position = {0, 3, 4};
    test.addQuad({0, 4.5, 6}, 1, 0);  // behind the light
    expectColor(colorOf(test), base * V3d(0.95, 0.95, 0.75));
}

TEST(PlainShading, OfMoreLightsThanAnyTableHoldsEachCountsAndIsShadowed) {
    QuadScene test;
    double expected = 0;
    for (int i = 0; i < 128; ++i) {
        const double tilt = i * 0.01;
        test.addSun({std::sin(tilt), 0, -std::cos(tilt)}, V3d(1 / 128.0));
        if (i <= 100) expected += std::cos(tilt) / 128;
    }
    // In the way of the last of them.
    const double reach = 2 * std::tan(1.005);
    test.addQuad({-reach - 10, 0, 2}, 10, 0);
    EXPECT_NEAR(colorOf(test).x, expected, kClose);
    RenderOptions options = squareOptions(9);
    options.samples = 4;
    options.maxSamples = 64;
    EXPECT_NEAR(displayed(renderPlain(test, frontCamera({0, 0, 5}, 0.01), options), 4, 4).x,
                expected, kClose);
}

/// A floor under a roof, parts of one object, the camera in between. The roof may be
/// clear, or reach from the left to the middle only.
struct Roofed : TestScene {
    Roofed(LightKind kind, double size, double angle, float alpha = 1, double right = 0) {
        addSurface();
        addSurface().baseColor.w = alpha;
        scene.surfaces[1].alphaMode = AlphaMode::Blend;
        Object& floor = addQuad({0, 0, 0}, 20, 0);
        auto over = quadMesh(10);
        for (Imath::V3f& corner : over->positions)
            corner += Imath::V3f(static_cast<float>(right), 0, 1);
        floor.parts.push_back({over, 1, 0});
        roof = &floor.parts[1];
        Light& light = addLight(kind);
        light.position = {0, 0, 2};
        light.direction = kDown;
        light.outerCosine = std::cos(1.5);
        light.innerCosine = std::cos(1.4);
        soften(size, angle);
    }
    Part* roof;
    /// How bright the middle of the floor is.
    double level(RenderStats& stats) const {
        return displayed(onePixel(*this, {}, &stats, {0, 0, 0.5}), 0, 0).x;
    }
};

/// The darkest and the brightest pixel of some, of which the last are lit in batches.
std::pair<double, double> levelsOf(const TestScene& test, const V3d& eye) {
    const Picture picture = renderPlain(test, frontCamera(eye, 0.2), squareOptions(40));
    std::pair<double, double> levels(1, 0);
    for (int i = 0; i < 40 * 40; ++i) {
        const double level = displayed(picture, i % 40, i / 40).x;
        levels = {std::min(levels.first, level), std::max(levels.second, level)};
    }
    return levels;
}

TEST(PlainShading, ALampInASurfaceShinesPastIt) {
    for (const float alpha : {1.0F, 0.5F}) {
        Roofed test(LightKind::Point, 0, 0, alpha);
        const_cast<Light*>(test.lightSet.lights[0].light)->position.z = 1;
        EXPECT_GT(levelsOf(test, {0, 0, 0.5}).first, 0.9) << alpha;
        const_cast<Light*>(test.lightSet.lights[0].light)->position.z = 1.0001;
        EXPECT_LT(levelsOf(test, {0, 0, 0.5}).second, 0.75) << alpha;
    }
}

TEST(PlainShading, LightsAndSurfacesMayGoWithoutShadows) {
    for (std::size_t i = 0; i < 12; ++i) {
        const auto kind =
            std::array{LightKind::Directional, LightKind::Point, LightKind::Spot}[i % 3];
        const double size = i < 6 ? 0 : 0.1;
        Roofed test(kind, size, size, i % 2 == 0 ? 1 : 0.5F);
        RenderStats stats;
        const auto isLit = [&] { return test.level(stats) > 0.99; };
        Surface& floor = test.scene.surfaces[0];
        Surface& roof = test.scene.surfaces[1];
        EXPECT_LT(test.level(stats), 0.6);
        EXPECT_GT(stats.shadowRays, 0U);
        roof.castsShadows = false;
        EXPECT_TRUE(isLit());
        roof.castsShadows = true;
        floor.receivesShadows = false;
        EXPECT_TRUE(isLit() && stats.shadowRays == 0);
        floor.receivesShadows = true;
        test.lightSet.lights[0].castsShadow = false;
        EXPECT_TRUE(isLit() && stats.shadowRays == 0);
        test.lightSet.lights[0].castsShadow = true;
        // Spared is the surface itself: no other, and none on another object.
        floor.selfShadow = roof.selfShadow = false;
        EXPECT_LT(test.level(stats), 0.6);
        test.roof->surface = 0;
        EXPECT_TRUE(isLit());
        test.addQuad({0, 0, 1.5}, 1, 0);
        EXPECT_EQ(test.level(stats), 0);
    }
}

TEST(PlainShading, LightsWithASizeThrowSoftShadowsAsWideAsTheyAre) {
    // A ball of 0.5 two above the floor, or a sun about as wide: the shadow's border
    // reaches as far as the roof's edge hides some of it, and is half lit in the middle.
    const double reach = std::tan(std::asin(0.5));
    for (const LightKind kind : {LightKind::Point, LightKind::Spot, LightKind::Directional}) {
        // Brightness of a floor by x, from -2 to 2, with half a roof over it.
        const auto row = [&](double radius, double angle) {
            const Roofed test(kind, radius, angle, 1, -10);
            RenderOptions options = squareOptions(320);
            options.crop = {0, 160, 320, 161};
            const Picture picture = renderPlain(test, frontCamera({0, 0, 0.5}, 2), options);
            std::vector<double> levels;
            for (int x = 0; x < 320; ++x)
                levels.push_back(displayed(picture, x, 160).x);
            return levels;
        };
        const std::vector<double> hard = row(0, 0);
        const std::vector<double> soft = row(0.5, 2 * std::atan(0.5));
        for (std::size_t x = 0; x < 320; ++x) {
            const double at = (static_cast<double>(x) - 159.5) / 80;
            if (std::abs(at) > reach) {
                EXPECT_EQ(soft[x], hard[x]) << at;
            } else {
                EXPECT_GE(soft[x], soft[x - 1] * 0.98) << at;
            }
        }
        EXPECT_NEAR((soft[159] + soft[160]) / 2, hard[160] / 2, 0.06 * hard[160]);
        EXPECT_GT(soft[139], 0);
        EXPECT_LT(soft[180], hard[180]);
        const std::set<double> steps(soft.begin() + 160 - 46, soft.begin() + 160 + 46);
        EXPECT_GT(steps.size(), 30U);
    }
}

TEST(PlainShading, SinglesidedBacksAreUnseenButThrowShadows) {
    TestScene test;
    test.addSurface();
    test.addSurface().doubleSided = true;
    test.addSun(kDown);
    const auto turned = [](double height) {
        return Imath::M44d().rotate(V3d(0, M_PI, 0)) * Imath::M44d().translate(V3d(0, 0, height));
    };
    test.addObject(quadMesh(1), 0, turned(1));
    expectColor(colorOf(test), V3d(0));
    test.addQuad({0, 0, 0}, 1, 0);  // seen through the back, in its shadow
    expectColor(colorOf(test), V3d(0));
    test.addObject(quadMesh(1), 1, turned(2));
    expectColor(colorOf(test), V3d(1));  // turned to the viewer, and so to the sun
    // Mirrored, a front stays a front, also where joints turn the triangles alone.
    test.addObject(quadMesh(1), 0,
                   Imath::M44d().scale(V3d(-1, 1, 1)) * Imath::M44d().translate(V3d(0, 0, 3)));
    test.scene.surfaces[0].baseColor = {1, 0, 0, 1};
    expectColor(colorOf(test), V3d(1, 0, 0));
    auto jointed = quadMesh(1);
    for (auto& triangle : jointed->triangles)
        std::swap(triangle[1], triangle[2]);
    test.addObject(jointed, 1, Imath::M44d().translate(V3d(0, 0, 4))).mirrored = true;
    test.scene.surfaces[1].doubleSided = false;
    jointed->smooth = true;
    expectColor(colorOf(test), V3d(1));
}

/// Appends a surface of that colour and alpha.
int addClear(TestScene& test, const Imath::V4f& color) {
    Surface& surface = test.addSurface();
    surface.alphaMode = AlphaMode::Blend;
    surface.baseColor = color;
    return static_cast<int>(test.scene.surfaces.size()) - 1;
}

TEST(PlainShading, ClearSurfacesLieOverWhatIsBehind) {
    TestScene test;
    test.lightSet.ambient = V3d(1);
    test.addSurface().baseColor = {0, 1, 0, 1};
    const int red = addClear(test, {1, 0, 0, 0.25F});
    const int blue = addClear(test, {0, 0, 1, 0.5F});
    const auto render = [&](const std::optional<V3d>& background) {
        RenderOptions options = squareOptions(1);
        options.background = background;
        return renderPlain(test, frontCamera({0, 0, 5}, 0.5), options);
    };
    // The nearer one is added first: order must come from distance.
    test.addQuad({0, 0, 2}, 1, blue);
    test.addQuad({0, 0, 1}, 1, red);
    const Picture open = render(std::nullopt);
    EXPECT_NEAR(static_cast<double>(open.pixel(0, 0)[3]), 1 - 0.75 * 0.5, kClose);
    // What covers is a share of light, not of display values.
    const double reddish = 0.5 * 0.25;
    const double through = 0.5 * 0.75;
    expectColor(displayed(open, 0, 0), encoded({reddish / (1 - through), 0, 0.5 / (1 - through)}));
    expectColor(displayed(render(V3d(0, 0.5, 0)), 0, 0),
                encoded({reddish, through * toLinear(0.5), 0.5}));
    test.addQuad({0, 0, 0}, 1, 0);
    expectColor(displayed(render(std::nullopt), 0, 0), encoded({reddish, through, 0.5}));
    // Also over what hardly shows any more.
    test.addQuad({0, 0, 3}, 1, addClear(test, {1, 0, 0, 0.98F}));
    expectColor(displayed(render(std::nullopt), 0, 0),
                encoded(V3d(reddish, through, 0.5) * 0.02 + V3d(0.98, 0, 0)));
}

/// Also so near each other that rounding says which is first, and through the edge
/// between their triangles.
TEST(PlainShading, OfClearSurfacesInOnePlaceEachCountsOnceAlsoInTheShadow) {
    TestScene test;
    const int clear = addClear(test, {1, 1, 1, 0.5F});
    test.addSurface();
    test.addSun(kDown);
    for (int i = 0; i < 5; ++i)
        test.addQuad(V3d(0, 0, 1e-7 * (i % 3)), 2, clear);
    RenderOptions options = squareOptions(20);
    options.background.reset();
    const Picture above = renderPlain(test, frontCamera({0, 0, 5}, 1), options);
    test.addQuad({0, 0, -2}, 2, 1);
    const Picture floor = renderPlain(test, frontCamera({0, 0, -1}, 1), options);
    for (int x = 0; x < 20; ++x) {
        EXPECT_EQ(above.pixel(x, 19 - x)[3], 1 - 1 / 32.0F);
        expectColor(displayed(floor, x, 19 - x), V3d(1 / 32.0));
    }
    // Slivers, seen from all sides.
    TestScene slivers;
    addClear(slivers, {1, 1, 1, 0.5F});
    for (int i = 0; i < 50; ++i) {
        slivers.addObject(quadMesh(1), 0,
                          Imath::M44d().scale(V3d(20, 0.05, 1)) *
                              Imath::M44d().translate(V3d(0, 0, 1e-6 * (i % 5))) *
                              Imath::M44d().rotate(V3d(0.7, 0.4, 0.3) * (i / 5)) *
                              Imath::M44d().translate(V3d(7, 5, 3)));
    }
    options.width = options.height = 200;
    const Picture picture = renderPlain(slivers, frontCamera({7, 5, 50}, 15), options);
    int covered = 0;
    for (std::size_t i = 3; i < picture.rgba.size(); i += 4) {
        covered += picture.rgba[i] > 0 ? 1 : 0;
        ASSERT_TRUE(picture.rgba[i] == 0 || picture.rgba[i] == 1 - 1 / 32.0F) << i / 4;
    }
    EXPECT_GT(covered, 200);
}

TEST(PlainShading, CutOutsHaveHolesAlsoInTheirShadows) {
    TestScene test;
    test.addSurface();
    // Left half there, right half where the cut-off is.
    const int image = test.addImage(2, 1, {255, 0, 0, 255, 255, 0, 0, 51});
    Surface& cutOut = test.addSurface();
    cutOut.alphaMode = AlphaMode::Mask;
    cutOut.alphaCutoff = 0.201F;
    drawOn(cutOut, image);
    test.addQuad({0, 0, 0}, 2, 0);
    test.addQuad({0, 0, 2}, 1, 1);
    test.addSun(kDown);
    const auto shownAt = [&](double height, int x) {
        const Picture picture = renderPlain(test, frontCamera({0, 0, height}, 1), squareOptions(4));
        return displayed(picture, x, 1);
    };
    expectColor(shownAt(5, 0), V3d(1, 0, 0));
    expectColor(shownAt(5, 3), V3d(1));
    expectColor(shownAt(1, 0), V3d(0));  // from under it: its shadow
    expectColor(shownAt(1, 3), V3d(1));
    cutOut.alphaCutoff = 0.2F;  // which 51 of 255 just reaches
    expectColor(shownAt(5, 3), V3d(1, 0, 0));
    expectColor(shownAt(1, 3), V3d(0));
    auto halfThere = quadMesh(1);  // by its corners, exactly at the cutoff
    halfThere->colors.assign(4, {1, 1, 1, 0.5F});
    Surface& tinted = test.addSurface();
    tinted.alphaMode = AlphaMode::Mask;
    tinted.alphaCutoff = 0.5F;
    test.addObject(halfThere, 2, Imath::M44d().translate(V3d(0, 0, 3)));
    expectColor(shownAt(5, 3), V3d(1));
    test.scene.surfaces[2].alphaCutoff = 0.51F;
    expectColor(shownAt(5, 3), V3d(1, 0, 0));
}

TEST(PlainShading, EmissionAndUnlitShowWithoutLight) {
    QuadScene test;
    test.surface().baseColor = {0.5F, 0.5F, 0.5F, 1};
    test.surface().unlit = true;
    expectColor(colorOf(test), V3d(toEncoded(0.5)));
    test.addSun(kDown);
    expectColor(colorOf(test), V3d(toEncoded(0.5)));
    test.surface().unlit = false;
    // Half emission: half-way to its hue, half luminous, fully lit by the sun.
    const float half = static_cast<float>(toLinear(0.5));
    test.surface().emissive = {half, 0, 0};
    const double grey = toEncoded(0.5);
    expectColor(colorOf(test), V3d(0.5 * grey + 0.5, 0.5 * grey, 0.5 * grey) * 1.5);
    test.surface().emissiveTexture.emplace().image = test.addImage(1, 1, {0, 0, 0, 255});
    expectColor(colorOf(test), V3d(grey));
    // More than all of it: its hue alone, as strong as it is and lit.
    test.surface().emissiveTexture.reset();
    test.surface().emissive = {3, 0, 0};
    expectColor(colorOf(test), V3d(toEncoded(3) + 1, 0, 0));
}

TEST(PlainShading, TextureFactorAndVertexColorMultiplyAsLightWhereCornersSay) {
    QuadScene test;
    test.surface().unlit = true;
    drawOn(test.surface(),
           test.addImage(2, 2, {0, 0, 0, 255, 51, 0, 0, 255, 102, 0, 0, 255, 153, 0, 0, 255}));
    const auto shown = [&](int x, int y) {
        return displayed(renderPlain(test, frontCamera({0, 0, 5}, 1), squareOptions(6)), x, y);
    };
    for (const int y : {1, 4}) {
        for (const int x : {0, 5})
            expectColor(shown(x, y), V3d((x / 5 + y / 4 * 2) * 0.2, 0, 0));
    }
    auto mesh = quadMesh(1);
    mesh->colors.assign(4, {0.5F, 1, 1, 1});
    test.addObject(mesh, 0, Imath::M44d().translate(V3d(0, 0, 1)));
    test.surface().baseColor = {0.5F, 1, 1, 1};
    expectColor(shown(5, 4), V3d(toEncoded(toLinear(0.6) / 4), 0, 0));
}

}  // namespace
}  // namespace tavora::studio
