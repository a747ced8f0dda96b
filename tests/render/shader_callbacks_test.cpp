// What a shader sees, what it may change, what its callbacks answer, and how avatars
// are shaded by zones.

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>

#include "host/handler.h"
#include "studio/scene/settings/settings.h"
#include "studio/scene/settings/toon_zones.h"
#include "studio/services/messages.h"
#include "studio/util/color.h"
#include "studio/util/error.h"
#include "tests/render/probe.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::M44d;
using Imath::V3d;
using Numbers = std::vector<double>;

constexpr std::int32_t kAll = HOST_SHADER_COLOR | HOST_SHADER_LUMINOUS | HOST_SHADER_DIFFUSE |
                              HOST_SHADER_SPECULAR | HOST_SHADER_TRANSPARENCY |
                              HOST_SHADER_RAYTRACE;

StateBlock probe(ProbeBehaviour behaviour, std::int32_t flags = kAll, float n0 = 0, float n1 = 0,
                 float n2 = 0, float n3 = 0) {
    return {static_cast<std::int32_t>(behaviour), flags, n0, n1, n2, n3};
}

/// What the probe tells while this lives: by name, the values in order.
class Told {
  public:
    Told() {
        setMessageSink([this](MessageKind, const std::string& text) {
            std::istringstream line(text);
            std::string name;
            line >> name;
            Numbers& values = values_[name];
            for (double value = 0; line >> value;)
                values.push_back(value);
        });
    }
    ~Told() { setMessageSink({}); }
    Told(const Told&) = delete;
    Told& operator=(const Told&) = delete;

    const Numbers& operator[](const std::string& name) { return values_[name]; }

  private:
    std::map<std::string, Numbers> values_;
};

void expectNumbers(const Numbers& actual, const Numbers& expected, const char* what = "") {
    EXPECT_THAT(actual, testing::Pointwise(testing::DoubleNear(1e-6), expected)) << what;
}

double asNumber(const void* id) {
    return static_cast<double>(reinterpret_cast<std::uintptr_t>(id));
}

const M44d kTurned = M44d().rotate(V3d(0, M_PI, 0));

TEST(SampleRecord, DescribesTheHit) {
    TestScene test;
    Surface& surface = test.addSurface();
    surface.roughness = 0.25F;
    surface.doubleSided = true;
    surface.baseColor = {1, 0, 1, 1};
    // Twice as large, moved, seen from behind.
    const M44d place = M44d().scale(V3d(2)) * kTurned * M44d().translate(V3d(0.5, 0, -3));
    const Object& object = test.addObject(quadMesh(1), 0, place);
    Told told;
    onePixel(test, probe(kDescribe));

    // The ray goes through the origin of x and y.
    expectNumbers(told["worldPosition"], {0, 0, -3});
    expectNumbers(told["objectPosition"], {0.25, 0, 0});
    expectNumbers(told["geometricNormal"], {0, 0, 1});
    expectNumbers(told["worldNormal"], {0, 0, 1});
    expectNumbers(told["raySource"], {0, 0, 5});
    expectNumbers(told["worldTransform"], {-2, 0, 0, 0, 2, 0, 0, 0, -2});
    expectNumbers(told["objectTransform"], {-0.5, 0, 0, 0, 0.5, 0, 0, 0, -0.5});
    expectNumbers(told["color"], {1, 0, 1});
    EXPECT_EQ(told["weights"][3], 0);
    // Spot, length, cosine, luminosity, diffuse, specular, transparency, bump, polygon.
    expectNumbers(told["single"], {1, 8, 1, 0, 1, 0.75 * 0.75, 0, 0, told["single"][8]});

    const auto polygon = static_cast<std::size_t>(told["single"][8]);
    ASSERT_LT(polygon, 2U);
    const Mesh& mesh = *object.parts[0].mesh;
    Numbers ids{asNumber(&object), told["ids"][1]};
    Numbers corners;
    V3d blended(0);
    for (std::size_t i = 0; i < 3; ++i) {
        const Imath::V3f& vertex = mesh.positions[mesh.triangles[polygon][i]];
        const V3d corner = V3d(vertex) * place;
        corners.insert(corners.end(), {corner.x, corner.y, corner.z});
        ids.push_back(asNumber(&vertex));
        blended += corner * told["weights"][i];
    }
    ids.push_back(0);
    corners.insert(corners.end(), {0, 0, 0});
    EXPECT_EQ(told["ids"], ids);
    EXPECT_NE(ids[1], 0) << "of the polygon";
    expectNumbers(told["corners"], corners);
    expectNumbers({blended.x, blended.y, blended.z}, {0, 0, -3});
    RenderOptions options = squareOptions(1);
    options.samples = 4;
    renderWith(test, frontCamera({0, 0, 5}, 0.5), options, PROBE_MODULE, probe(kDescribe));
    EXPECT_EQ(told["single"][9], 0.5) << "of each of four samples";
}

/// As it is and mirrored, from before and from behind; flattened.
TEST(SampleRecord, TurnsTheNormalsOfBacksToTheViewer) {
    for (const double width : {1.0, -1.0}) {
        for (const M44d& turn : {M44d(), kTurned}) {
            TestScene test;
            test.addSurface().doubleSided = true;
            auto mesh = quadMesh(1);
            mesh->smooth = true;
            mesh->normals.assign(4, {0.6F, 0, 0.8F});
            test.addObject(mesh, 0, M44d().scale(V3d(width, 1, 1)) * turn);
            const V3d normal(0.6 * width, 0, 0.8);
            test.addSun(-normal);
            expectColor(colorOf(test), V3d(1));
            Told told;
            onePixel(test, probe(kDescribe));
            expectNumbers(told["geometricNormal"], {0, 0, 1});
            expectNumbers(told["worldNormal"], {normal.x, 0, 0.8});
            test.scene.objects.clear();
            test.addObject(mesh, 0, M44d().scale(V3d(1, 1, 0)));
            onePixel(test, probe(kDescribe));
            EXPECT_EQ(told["worldNormal"][5], 1);
            EXPECT_EQ(told["single"][11], 1);  // cosine
        }
    }
}

/// The shading normal of a quad that faces +z, of whose map one texel is all over it.
Numbers mappedNormal(const V3d& mapped, const M44d& place = {},
                     const std::function<void(Surface&, Mesh&)>& change = {}) {
    const auto byteOf = [](double part) {
        return static_cast<std::uint8_t>(std::lround(255 * (part + 1) / 2));
    };
    TestScene test;
    Surface& surface = test.addSurface();
    surface.doubleSided = true;
    surface.normalTexture.emplace().isData = true;
    surface.normalTexture->image =
        test.addImage(1, 1, {byteOf(mapped.x), byteOf(mapped.y), byteOf(mapped.z), 255});
    const auto mesh = tangentQuadMesh(1);
    if (change) change(surface, *mesh);
    test.addObject(mesh, 0, place);
    Told told;
    onePixel(test, probe(kDescribe));
    return told["worldNormal"];
}

void expectNear(const Numbers& actual, const V3d& expected, const char* what) {
    ASSERT_EQ(actual.size(), 3U);
    EXPECT_LT((V3d(actual[0], actual[1], actual[2]) - expected.normalized()).length(), 0.01)
        << what;
}

TEST(NormalMap, PointsAlongTheImageAndTurnsWithTheSurface) {
    const V3d mapped = V3d(0.48, 0.6, 0.64);
    expectNear(mappedNormal(mapped), mapped, "green is up in the image, red right");
    expectNear(mappedNormal(mapped, kTurned), V3d(0.48, -0.6, 0.64), "the back, from behind");
    const M44d mirrored = M44d().scale(V3d(-1, 1, 1));
    expectNear(mappedNormal(mapped, mirrored), V3d(-0.48, 0.6, 0.64), "mirrored");
    expectNear(mappedNormal(mapped, mirrored * kTurned), V3d(-0.48, -0.6, 0.64), "its back");
    expectNear(mappedNormal(mapped, M44d().scale(V3d(4, 1, 1))), mapped, "a frame is no shape");
    expectNear(mappedNormal(V3d(0.48, 0.6, -1)), mapped, "of two channels");
    const auto strong = [](Surface& surface, Mesh&) { surface.normalScale = 2; };
    expectNear(mappedNormal(mapped, {}, strong), V3d(0.96, 1.2, 0.64), "scaled");
    const auto without = [](Surface& surface, Mesh&) { surface.normalMap = false; };
    EXPECT_EQ(mappedNormal(mapped, {}, without), (Numbers{0, 0, 1}));
    // Between two corners frames are blended, and not made straight or of unit length again.
    const auto skew = [](Surface&, Mesh& mesh) {
        mesh.smooth = true;
        mesh.normals[0] = {0, 0.6F, 0.8F};
        for (CornerTangents& corners : mesh.tangents)
            corners = {Imath::V4f(1, 0, 0, -1), {0, 1, 0, -1}, {0, 1, 0, -1}};
    };
    const V3d normal(0, 0.3, 0.9);
    const V3d tangent(0.5, 0.5, 0);
    expectNear(mappedNormal(mapped, {}, skew),
               tangent * 0.48 - normal.cross(tangent) * 0.6 + normal * 0.64, "blended");
}

/// A map turns a normal to a light that is behind the surface, which stays dark, also where it
/// casts no shadow on itself.
TEST(NormalMap, BringsNoLightThroughTheSurface) {
    TestScene test;
    Surface& surface = test.addSurface();
    surface.selfShadow = false;
    surface.normalTexture.emplace().isData = true;
    surface.normalTexture->image = test.addImage(1, 1, {250, 128, 163, 255});
    test.addObject(tangentQuadMesh(1), 0);
    test.addSun(V3d(-0.9, 0, 0.3).normalized());
    RenderOptions options = squareOptions(40);
    const Picture dark = renderPlain(test, frontCamera({0, 0, 5}, 1), options);
    for (int i = 0; i < 40 * 40; ++i)
        ASSERT_EQ(displayed(dark, i % 40, i / 40), V3d(0));
    test.lightSet.lights.clear();
    test.addSun(V3d(-0.9, 0, -0.3).normalized());
    EXPECT_GT(displayed(renderPlain(test, frontCamera({0, 0, 5}, 1), options), 20, 20).x, 0.5);
}

TEST(FlagWord, NamesWhatAShaderMayChange) {
    QuadScene test;
    test.lightSet.ambient = V3d(0.5);
    test.scene.surfaces[0].baseColor = {1, 0, 0, 1};
    const auto paint = [&](std::int32_t flags, float transparency = 0.25F) {
        return colorOf(test, probe(kPaint, flags, 0, 0, 1, transparency));
    };
    expectColor(paint(0), V3d(0.5, 0, 0));
    expectColor(paint(HOST_SHADER_COLOR), V3d(0, 0, 0.5));
    expectColor(paint(HOST_SHADER_LUMINOUS), V3d(1.5, 0, 0));
    expectColor(paint(HOST_SHADER_DIFFUSE), V3d(0, 0, 0));
    expectColor(paint(HOST_SHADER_TRANSPARENCY), V3d(toEncoded(0.75 * toLinear(0.5)), 0, 0));
    expectColor(paint(kAll), V3d(0, 0, toEncoded(0.75)));
    expectColor(paint(kAll, 1), V3d(0));
    expectColor(paint(kAll, 3), V3d(0));
    expectColor(paint(kAll, -1), V3d(0, 0, 1));
    // A transparency that is none is none; a colour that is none becomes black.
    expectColor(paint(kAll, NAN), V3d(0, 0, 1));
    for (const float bad : {NAN, INFINITY})
        expectColor(colorOf(test, probe(kPaint, kAll, 0, bad, 1)), V3d(0));
}

TEST(ShaderResults, GlossRemainsWithItsShare) {
    QuadScene test;
    test.scene.surfaces[0].roughness = 0.5F;
    test.scene.surfaces[0].baseColor = {0, 0, 0, 1};
    const auto gloss = [&] { return colorOf(test, probe(kPaint, 0)); };
    test.addSun({0, 0, -1}, {1, 0.5, 0});
    // Mirrored straight back: the lobe's peak.
    expectColor(gloss(), V3d(0.25, 0.125, 0));
    test.lightSet.lights.clear();
    test.addSun({std::sin(0.5), 0, -std::cos(0.5)});
    expectColor(gloss(), V3d(0.25 * std::pow(std::cos(0.25), 30)));
    test.addSun({0, 0, -1});
    test.lightSet.lights.erase(test.lightSet.lights.begin());
    const_cast<Light*>(test.lightSet.lights[0].light)->makesHighlights = false;
    expectColor(gloss(), V3d(0));
}

TEST(Illumination, AnswersHereAndElsewhere) {
    QuadScene test;
    test.scene.surfaces[0].doubleSided = true;
    test.addSun({0, 0, -1}, V3d(0.25));
    test.addSun({0, 0, 1}, V3d(0.5));  // from behind: does not reach this side
    // Elsewhere: behind the quad, the other way about.
    for (const bool receives : {true, false}) {
        test.surface().receivesShadows = receives;
        expectColor(colorOf(test, probe(kMeasureLight, kAll, 0, 0, -1)),
                    V3d(0.25, receives ? 0.5 : 0.75, 0));
    }
    TestScene shadowed;
    shadowed.addSurface();
    Surface& clear = shadowed.addSurface();
    clear.alphaMode = AlphaMode::Blend;
    clear.baseColor.w = 0.75F;
    shadowed.addQuad({0, 0, 0}, 1, 0);
    shadowed.addQuad({2, 0, 2}, 0.5, 0);
    shadowed.addSun({-1, 0, -1});
    expectColor(colorOf(shadowed, probe(kMeasureLight, kAll, 0.75F, 0, 0)), V3d(0, 1, 0));
    expectColor(colorOf(shadowed, probe(kMeasureLight, kAll, 0.25F, 0, 0)), V3d(0));
    shadowed.addQuad({2.75, 0, 2}, 0.2, 1);
    expectColor(colorOf(shadowed, probe(kMeasureLight, kAll, 0.75F, 0, 0)), V3d(0, 0.25, 0));
}

TEST(Tracing, GoesOnAlongTheCameraRay) {
    TestScene test;
    test.addSurface();
    for (int i = 0; i < 3; ++i)
        test.addQuad({0, 0, -1e-6 * i}, 1, 0);  // closer than any margin
    const Told told;
    expectColor(colorOf(test, probe(kPassOn, kAll, 1)), V3d(1, 0.1, 0));
    // Without the flag, nothing is there.
    const std::int32_t noRays = kAll & ~HOST_SHADER_RAYTRACE;
    expectColor(colorOf(test, probe(kPassOn, noRays, 1)), V3d(1, 0, 0));
    // It ends eight deep, and costs no more for asking again.
    for (int i = 0; i < 9; ++i)
        test.addQuad({0, 0, -0.5 * i - 1}, 1, 0);
    for (const float times : {1.0F, 5.0F}) {
        RenderStats stats;
        const Picture picture = onePixel(test, probe(kPassOn, kAll, times), &stats);
        expectColor(displayed(picture, 0, 0), V3d(1, 0.4, 0));
        EXPECT_EQ(stats.evaluations, 9U);
    }
}

TEST(Tracing, ShadesWhatItHits) {
    TestScene test;
    test.addSurface();
    Surface& clear = test.addSurface();
    clear.alphaMode = AlphaMode::Blend;
    clear.baseColor = {1, 1, 1, 0};
    test.addSurface().baseColor = {1, 0, 0, 1};
    test.lightSet.ambient = V3d(0.5);
    const Object& own = test.addQuad({2, -2, 0.5}, 4, 0);  // of which one triangle is seen
    test.addQuad({0, 0, 2}, 1, 1);                         // wholly clear: not there
    const Object& red = test.addObject(quadMesh(1), 2, kTurned * M44d().translate(V3d(0, 0, 3)));
    SurfaceShaders shading(3);
    shading[0] = SurfaceShader{.block = probe(kPassOn, kAll, 1, 0, 0, 1)};
    Told told;
    RenderOptions options = squareOptions(1);
    options.samples = 2;
    Renderer(test.scene)
        .render(frontCamera({0, 0, 1}, 0.5), test.lightSet, shading, PROBE_MODULE, options, {},
                nullptr);
    // Twice alike, though the first overwrote the record.
    Numbers hit{2.5, 0.5, 0, 0, 0.5, 2.5, asNumber(&red), asNumber(&own)};
    hit.insert(hit.end(), hit.begin(), hit.begin() + 8);
    expectNumbers(told["hit"], hit);
}

TEST(Modules, SayOnceWhatTheyHaveToSayAndMustBeThereOnlyWhenAShaderNeedsThem) {
    QuadScene test;
    Told told;
    RenderOptions options = squareOptions(100);
    options.threads = 4;
    const Camera camera = frontCamera({0, 0, 5}, 0.5);
    renderWith(test, camera, options, PROBE_MODULE, probe(kGreet));
    EXPECT_EQ(told["loaded"].size(), 1U);
    EXPECT_THROW(renderWith(test, camera, options, "/no/module.so", probe(kPaint)), Error);
    renderPlain(test, camera, options);
}

struct Avatar {
    double shift;
    double toony;
    bool textured;
    double most;  ///< error: a smooth step is so far from a straight one, of 1
};

/// The extension's formula for a white light of strength 1.
V3d formula(const V3d& base, const V3d& shade, const Avatar& avatar, double cosine) {
    const double shading = cosine + avatar.shift;
    const double low = avatar.toony - 1;
    const double share =
        low == 0 ? (shading > 0 ? 1 : 0) : std::clamp((shading - low) / (-2 * low), 0.0, 1.0);
    return encoded(shade * (1 - share) + base * share);
}

TEST(Avatars, ZonesAreTheFormulaWhereTheyCanBe) {
    constexpr double kExact = 2e-3;
    for (const Avatar& avatar :
         {Avatar{0, 1, false, kExact}, Avatar{-0.3, 1, true, kExact}, Avatar{1, 1, true, kExact},
          Avatar{-1, 1, false, kExact}, Avatar{-0.2, 0.85, false, 0.045},
          Avatar{-0.3, 0.75, true, 0.08}}) {
        // A ball that a sun lights from the right, so that half of it is dark.
        TestScene ball;
        Surface& surface = ball.addSurface();
        surface.baseColor = {0.8F, 0.5F, 0.35F, 1};
        surface.selfShadow = false;
        surface.toon.emplace().shadeColor = Imath::V3f(0.35F, 0.12F, 0.2F);
        surface.toon->shift = static_cast<float>(avatar.shift);
        surface.toon->toony = static_cast<float>(avatar.toony);
        V3d base(0.8, 0.5, 0.35);
        if (avatar.textured) {
            drawOn(surface, ball.addImage(1, 1, {90, 200, 255, 255}));
            base *= V3d(toLinear(90 / 255.0), toLinear(200 / 255.0), 1);
        }
        ball.addObject(sphereMesh(1, 128, 64), 0);
        ball.addSun({-1, 0, 0});
        ball.lightSet.ambient = V3d(0.25);
        const ToonZones zones = toonZones(ball.scene, surface);
        EXPECT_EQ(zones.inexact.empty(), avatar.most == kExact);
        const std::vector<std::string> lights{ball.lightSet.lights[0].light->name};
        const Picture picture =
            renderWith(ball, frontCamera({0, 0, 5}, 1), squareOptions(96), TAVORA_MODULE,
                       withChanges(look(), zones.settings, "test", lights));
        for (int i = 0; i < 96 * 96; ++i) {
            const double cosine = (2 * (i % 96) + 1.0) / 96 - 1;
            const double height = (2 * (i / 96) + 1.0) / 96 - 1;
            const bool atBorder = std::abs(cosine + avatar.shift) < 0.01;
            if (std::hypot(cosine, height) > 0.97 || (atBorder && avatar.most == kExact)) continue;
            const V3d off = displayed(picture, i % 96, i / 96) -
                            formula(base, V3d(0.35, 0.12, 0.2), avatar, cosine);
            ASSERT_LT(off.length(), avatar.most) << avatar.shift << " at " << cosine;
        }
    }
}

}  // namespace
}  // namespace tavora::studio
