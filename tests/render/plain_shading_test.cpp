// Surfaces without a shader: light, shadows, clear and cut-out surfaces, with
// answers that can be worked out on paper.

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

#include "studio/util/color.h"
#include "tests/render/room.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

constexpr double kClose = 2e-6;

V3d encoded(const V3d& linear) {
    return {toEncoded(linear.x), toEncoded(linear.y), toEncoded(linear.z)};
}

const V3d kDown(0, 0, -1);  // straight at a quad

TEST(PlainShading, ScattersLightByTheCosine) {
    QuadScene test;
    test.surface().baseColor = {0.5F, 0.25F, 1, 1};
    test.rig.ambient = {0.25, 0.25, 0.25};
    const double angle = std::numbers::pi / 3;
    test.addSun({std::sin(angle), 0, -std::cos(angle)});
    expectColor(colorOf(test), V3d(toEncoded(0.5), toEncoded(0.25), 1) * 0.75);
    // From behind, nothing is added.
    test.addSun({0, 0, 1});
    expectColor(colorOf(test), V3d(toEncoded(0.5), toEncoded(0.25), 1) * 0.75);
}

TEST(PlainShading, MeshesThatHangOnMirroredJointsAreLitFromOutside) {
    TestScene test;
    test.addSurface();
    auto mesh = sphereMesh(1, 32, 16);
    for (auto& triangle : mesh->triangles)
        std::swap(triangle[1], triangle[2]);
    auto object = std::make_unique<Object>();
    object->mirrored = true;
    object->parts.push_back({mesh, 0, 0});
    test.scene.objects.push_back(std::move(object));
    test.addSun(kDown);
    const Picture picture = renderPlain(test, frontCamera({0, 0, 5}, 1), squareOptions(5));
    EXPECT_NEAR(displayed(picture, 2, 2).x, 1, 0.01);
}

TEST(PlainShading, PointLightsShineFromWhereTheyAre) {
    QuadScene test;
    test.addLight(LightKind::Point, {1, 0.5, 0}).position = {0, 3, 4};
    const double cosine = 4.0 / 5.0;
    expectColor(colorOf(test), V3d(1, 0.5, 0) * cosine);
    // Level 1 at distance 1 with falloff.
    test.rig.falloff = true;
    expectColor(colorOf(test), V3d(1, 0.5, 0) * cosine / 25);
}

TEST(PlainShading, SpotsLightTheirConeAlone) {
    TestScene test;
    test.addSurface();
    test.addQuad({0, 0, 0}, 10, 0);
    Light& spot = test.addLight(LightKind::Spot);
    spot.position = {0, 0, 1};
    spot.innerCosine = std::cos(0.5);
    spot.outerCosine = std::sqrt(0.5);
    const Picture picture = renderPlain(test, frontCamera({0, 0, 5}, 2), squareOptions(41));
    const double step = 4.0 / 41;
    for (int x = 0; x < 41; ++x) {
        const double away = std::abs((x - 20) * step);
        const double shown = displayed(picture, x, 20).x;
        if (away > 1.001) {
            EXPECT_EQ(shown, 0) << x;
        } else if (away < std::tan(0.5)) {
            EXPECT_NEAR(shown, 1 / std::hypot(1, away), kClose) << x;
        } else {
            EXPECT_GT(shown, 0) << x;
            EXPECT_LT(shown, 1 / std::hypot(1, away)) << x;
        }
    }
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
    options.mostSamples = 64;
    EXPECT_NEAR(displayed(renderPlain(test, frontCamera({0, 0, 5}, 0.01), options), 4, 4).x,
                expected, kClose);
}

/// Half of a floor lies under a roof that ends at x = 0, one above it; the
/// camera looks from in between. Brightness by x, from -2 to 2.
std::vector<double> underHalfARoof(LightKind kind, double radius, double angle) {
    TestScene test;
    test.addSurface();
    test.addQuad({0, 0, 0}, 10, 0);
    test.addQuad({-10, 0, 1}, 10, 0);
    Light& light = test.addLight(kind);
    light.position = {0, 0, 2};
    light.direction = kDown;
    light.outerCosine = std::cos(1.5);
    light.innerCosine = std::cos(1.4);
    test.soften(radius, angle);
    const Picture picture = renderPlain(test, frontCamera({0, 0, 0.5}, 2), squareOptions(80));
    std::vector<double> row;
    for (int x = 0; x < 80; ++x)
        row.push_back(displayed(picture, x, 40).x);
    return row;
}

TEST(PlainShading, LightsWithASizeThrowSoftShadowsAsWideAsTheyAre) {
    // A ball of 0.5 two above the floor, or a sun about as wide: the shadow's border
    // reaches as far as the roof's edge hides some of it, and is half lit in the middle.
    const double reach = std::tan(std::asin(0.5));
    for (const LightKind kind : {LightKind::Point, LightKind::Spot, LightKind::Directional}) {
        const std::vector<double> hard = underHalfARoof(kind, 0, 0);
        const std::vector<double> soft = underHalfARoof(kind, 0.5, 2 * std::atan(0.5));
        for (std::size_t x = 0; x < 80; ++x) {
            const double at = (static_cast<double>(x) - 39.5) / 20;
            if (std::abs(at) > reach) {
                EXPECT_EQ(soft[x], hard[x]) << at;
            } else {
                EXPECT_GE(soft[x], soft[x - 1] * 0.98) << at;
            }
        }
        EXPECT_NEAR((soft[39] + soft[40]) / 2, hard[40] / 2, 0.06 * hard[40]);
        EXPECT_GT(soft[34], 0);
        EXPECT_LT(soft[45], hard[45]);
    }
}

TEST(PlainShading, ASurfaceMaySpareItselfItsShadows) {
    TestScene test;
    const auto darkPixels = [&test](bool selfShadow) {
        test.scene.surfaces[0].selfShadow = selfShadow;
        const Picture picture = renderPlain(test, frontCamera({0, 0, 1}, 4), squareOptions(40));
        int dark = 0;
        for (std::size_t i = 0; i < picture.rgba.size(); i += 4)
            dark += picture.rgba[i] == 0 ? 1 : 0;
        return dark;
    };
    test.addSurface();
    test.addSurface();
    auto both = quadMesh(10);  // a floor, and a roof over a part of it
    const auto roof = quadMesh(0.5);
    for (const Imath::V3f& corner : roof->positions) {
        both->positions.push_back(corner + Imath::V3f(0, 0, 2));
        both->normals.emplace_back(0, 0, 1);
    }
    both->uvs = {};
    both->triangles.push_back({4, 5, 6});
    both->triangles.push_back({4, 6, 7});
    test.addObject(both, 0);
    test.addSun({1, 0, -1});
    const int own = darkPixels(true);
    EXPECT_GT(own, 10);
    EXPECT_EQ(darkPixels(false), 0);
    // Others' shadows stay: those of another surface, and of the same on another object.
    test.addQuad({-2, 2, 2}, 0.5, 1);
    const int others = darkPixels(false);
    EXPECT_GT(others, 10);
    EXPECT_EQ(darkPixels(true), own + others);
    test.addQuad({-2, -2, 2}, 0.5, 0);
    EXPECT_GT(darkPixels(false), 2 * others - 10);
}

/// A floor under a roof, which is clear or not, and a light above both.
struct Roofed : TestScene {
    Roofed(LightKind kind, double size, float alpha) {
        addSurface();
        addSurface().baseColor.w = alpha;
        scene.surfaces[1].alphaMode = AlphaMode::Blend;
        addQuad({0, 0, 0}, 1, 0);
        addQuad({0, 0, 2}, 4, 1);
        addLight(kind).position = {0, 0, 4};
        soften(size, size);
    }
    /// How bright the floor is.
    double level(std::uint64_t& shadowRays) const {
        RenderStats stats;
        const Picture picture =
            renderPlain(*this, frontCamera({0, 0, 1}, 0.1), squareOptions(1), &stats);
        shadowRays = stats.shadowRays;
        return displayed(picture, 0, 0).x;
    }
};

TEST(PlainShading, LightsAndSurfacesMayGoWithoutShadows) {
    constexpr double kLit = 0.99;
    for (const LightKind kind : {LightKind::Directional, LightKind::Point, LightKind::Spot}) {
        for (const double size : {0.0, 0.1}) {
            for (const float alpha : {1.0F, 0.5F}) {
                std::uint64_t rays = 0;
                Roofed test(kind, size, alpha);
                EXPECT_LT(test.level(rays), 0.6);
                EXPECT_GT(rays, 0U);
                test.scene.surfaces[1].castsShadows = false;
                EXPECT_GT(test.level(rays), kLit);
                test.scene.surfaces[1].castsShadows = true;
                test.scene.surfaces[0].receivesShadows = false;
                EXPECT_GT(test.level(rays), kLit);
                EXPECT_EQ(rays, 0U);
                test.scene.surfaces[0].receivesShadows = true;
                test.rig.lights[0].castsShadow = false;
                EXPECT_GT(test.level(rays), kLit);
                EXPECT_EQ(rays, 0U);
            }
        }
    }
}

TEST(PlainShading, SinglesidedBacksAreUnseenButThrowShadows) {
    TestScene test;
    test.addSurface();
    test.addSurface().doubleSided = true;
    test.addSun(kDown);
    const Imath::M44d turned = Imath::M44d().rotate(V3d(0, std::numbers::pi, 0));
    test.addObject(quadMesh(1), 0, turned * Imath::M44d().translate(V3d(0, 0, 1)));
    expectColor(colorOf(test), V3d(0));
    test.addQuad({0, 0, 0}, 1, 0);  // seen through the back, in its shadow
    expectColor(colorOf(test), V3d(0));
    test.addObject(quadMesh(1), 1, turned * Imath::M44d().translate(V3d(0, 0, 2)));
    expectColor(colorOf(test), V3d(1));  // turned to the viewer, and so to the sun
    // Mirrored, a front stays a front.
    test.addObject(quadMesh(1), 0,
                   Imath::M44d().scale(V3d(-1, 1, 1)) * Imath::M44d().translate(V3d(0, 0, 3)));
    test.scene.surfaces[0].baseColor = {1, 0, 0, 1};
    expectColor(colorOf(test), V3d(1, 0, 0));
}

TEST(PlainShading, ClearSurfacesLieOverWhatIsBehind) {
    TestScene test;
    test.rig.ambient = V3d(1);
    test.addSurface().baseColor = {0, 1, 0, 1};
    const auto clear = [&](const Imath::V4f& color) {
        Surface& surface = test.addSurface();
        surface.alphaMode = AlphaMode::Blend;
        surface.baseColor = color;
    };
    clear({1, 0, 0, 0.25F});
    clear({0, 0, 1, 0.5F});
    const auto render = [&](const std::optional<V3d>& background) {
        RenderOptions options = squareOptions(1);
        options.background = background;
        return renderPlain(test, frontCamera({0, 0, 5}, 0.5), options);
    };
    // The nearer one is added first: order must come from distance.
    test.addQuad({0, 0, 2}, 1, 2);
    test.addQuad({0, 0, 1}, 1, 1);
    const Picture open = render(std::nullopt);
    EXPECT_NEAR(static_cast<double>(open.pixel(0, 0)[3]), 1 - 0.75 * 0.5, kClose);
    // What covers is a share of light, not of display values.
    const double red = 0.5 * 0.25;
    const double through = 0.5 * 0.75;
    expectColor(displayed(open, 0, 0), encoded({red / (1 - through), 0, 0.5 / (1 - through)}));
    expectColor(displayed(render(V3d(0, 0.5, 0)), 0, 0),
                encoded({red, through * toLinear(0.5), 0.5}));
    test.addQuad({0, 0, 0}, 1, 0);
    expectColor(displayed(render(std::nullopt), 0, 0), encoded({red, through, 0.5}));
}

TEST(PlainShading, OverABackgroundItIsTheClearPictureLaidOverIt) {
    Room test;
    test.addLights(0, 0);
    RenderOptions options = squareOptions(48);
    options.samples = 4;
    options.mostSamples = 64;
    options.background = {};
    const Picture clear = renderPlain(test, roomCamera(), options);
    for (const V3d& background : {V3d(0), V3d(1), V3d(0, 1, 0), V3d(0.1, 0.3, 0.5)}) {
        options.background = background;
        const Picture over = renderPlain(test, roomCamera(), options);
        for (std::size_t i = 0; i < over.rgba.size(); ++i) {
            const auto channel = static_cast<int>(i % 4);
            const double through = 1 - static_cast<double>(clear.rgba[i - i % 4 + 3]);
            const double behind = channel == 3 ? 1 : toLinear(background[channel]);
            ASSERT_NEAR(over.rgba[i], static_cast<double>(clear.rgba[i]) + through * behind, 1e-6)
                << i;
        }
    }
}

TEST(PlainShading, ClearSurfacesLetLightThrough) {
    TestScene test;
    test.addSurface();
    test.addSun(kDown);
    test.addQuad({0, 0, 0}, 1, 0);
    for (const float alpha : {0.25F, 0.5F, 0.3F}) {
        Surface& surface = test.addSurface();
        surface.alphaMode = AlphaMode::Blend;
        surface.baseColor = {1, 1, 1, alpha};
        test.addQuad({0, 0, 3.0 + alpha}, 1, static_cast<int>(test.scene.surfaces.size()) - 1);
    }
    expectColor(colorFrom({0, 0, 2}, test), V3d(0.75 * 0.5 * 0.7));
}

TEST(PlainShading, CutOutsHaveHolesAlsoInTheirShadows) {
    TestScene test;
    test.addSurface();
    // Left half there, right half where the cut-off is.
    const int image = test.addImage(2, 1, {255, 0, 0, 255, 255, 0, 0, 51});
    Surface& cutOut = test.addSurface();
    cutOut.alphaMode = AlphaMode::Mask;
    cutOut.alphaCutoff = 0.201F;
    cutOut.baseColorTexture = TextureUse{};
    cutOut.baseColorTexture->image = image;
    cutOut.baseColorTexture->magnify = cutOut.baseColorTexture->minify = Filter::Nearest;
    cutOut.baseColorTexture->mipmaps = false;
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
}

TEST(PlainShading, MultipliesTextureFactorAndVertexColorAsLight) {
    TestScene test;
    Surface& surface = test.addSurface();
    surface.unlit = true;
    surface.baseColorTexture = TextureUse{};
    surface.baseColorTexture->image = test.addImage(1, 1, {188, 188, 188, 255});
    auto mesh = quadMesh(1);
    test.addObject(mesh, 0);
    expectColor(colorOf(test), V3d(188 / 255.0));
    surface.baseColor = {0.5F, 1, 1, 1};
    mesh->colors.assign(4, {1, 1, 0.5F, 1});
    const double texel = toLinear(188 / 255.0);
    expectColor(colorOf(test), V3d(toEncoded(texel / 2), toEncoded(texel), toEncoded(texel / 2)));
}

TEST(PlainShading, TexturesLieOnEachTriangleAsItsCornersSay) {
    QuadScene test;
    test.surface().unlit = true;
    TextureUse& use = test.surface().baseColorTexture.emplace();
    use.image = test.addImage(2, 2, {0, 0, 0, 255, 51, 0, 0, 255, 102, 0, 0, 255, 153, 0, 0, 255});
    use.magnify = use.minify = Filter::Nearest;
    use.mipmaps = false;
    const Picture picture = renderPlain(test, frontCamera({0, 0, 5}, 1), squareOptions(6));
    for (const int y : {1, 4}) {
        for (const int x : {0, 5})
            expectColor(displayed(picture, x, y), V3d((x / 5 + y / 4 * 2) * 0.2, 0, 0));
    }
}

}  // namespace
}  // namespace tavora::studio
