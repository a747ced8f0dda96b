// What a shader sees, what it may change, and what its callbacks answer.

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>

#include "host/handler.h"
#include "studio/services/messages.h"
#include "studio/util/color.h"
#include "studio/util/error.h"
#include "tests/render/probe.h"
#include "tests/render/room.h"

namespace tavora::studio {
namespace {

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
            std::vector<double>& values = values_[name];
            for (double value = 0; line >> value;)
                values.push_back(value);
            ++counts_[name];
        });
    }
    ~Told() { setMessageSink({}); }
    Told(const Told&) = delete;
    Told& operator=(const Told&) = delete;

    const Numbers& operator[](const std::string& name) { return values_[name]; }
    int count(const std::string& name) { return counts_[name]; }

  private:
    std::map<std::string, Numbers> values_;
    std::map<std::string, int> counts_;
};

void expectNumbers(const Numbers& actual, const Numbers& expected) {
    EXPECT_THAT(actual, testing::Pointwise(testing::DoubleNear(1e-6), expected));
}

double asNumber(const void* id) {
    return static_cast<double>(reinterpret_cast<std::uintptr_t>(id));
}

TEST(SampleRecord, DescribesTheHit) {
    TestScene test;
    Surface& surface = test.addSurface();
    surface.roughness = 0.25F;
    surface.doubleSided = true;
    surface.baseColor = {1, 0, 1, 1};
    // Twice as large, moved, seen from behind.
    const Imath::M44d place = Imath::M44d().scale(V3d(2)) * Imath::M44d().rotate(V3d(0, M_PI, 0)) *
                              Imath::M44d().translate(V3d(0.5, 0, -3));
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
    // Spot, length, cosine, luminosity, diffuse, specular, transparency, bump, polygon.
    expectNumbers(told["single"], {1, 8, 1, 0, 1, 0.75 * 0.75, 0, 0, told["single"][8]});
    EXPECT_EQ(told["object"], Numbers{asNumber(&object)});

    const auto polygon = static_cast<std::size_t>(told["single"][8]);
    ASSERT_LT(polygon, 2U);
    EXPECT_NE(told["polygon"], Numbers{0});
    const Mesh& mesh = *object.parts[0].mesh;
    V3d blended(0);
    for (std::size_t i = 0; i < 3; ++i) {
        const Imath::V3f& vertex = mesh.positions[mesh.triangles[polygon][i]];
        EXPECT_EQ(told["vertex"][i], asNumber(&vertex));
        const V3d corner = V3d(vertex) * place;
        expectNumbers({told["corner"].begin() + static_cast<std::ptrdiff_t>(3 * i),
                       told["corner"].begin() + static_cast<std::ptrdiff_t>(3 * i + 3)},
                      {corner.x, corner.y, corner.z});
        blended += corner * told["weights"][i];
    }
    expectNumbers({blended.x, blended.y, blended.z}, {0, 0, -3});
    EXPECT_EQ(told["vertex"][3], 0);
    EXPECT_EQ(told["weights"][3], 0);
}

TEST(SampleRecord, InterpolatesNormalsThroughFlatteningTransforms) {
    TestScene test;
    test.addSurface();
    auto mesh = quadMesh(1);
    mesh->smooth = true;
    mesh->normals.assign(4, Imath::V3f(1, 0, 1).normalized());
    test.addObject(mesh, 0, Imath::M44d().scale(V3d(1, 1, 0)));
    Told told;
    onePixel(test, probe(kDescribe));
    expectNumbers(told["worldNormal"], {0, 0, 1});
    EXPECT_EQ(told["single"][2], 1);  // cosine
}

/// As it is and mirrored, from before and from behind.
TEST(SampleRecord, TurnsTheNormalsOfBacksToTheViewer) {
    for (const double width : {1.0, -1.0}) {
        for (const double turn : {0.0, M_PI}) {
            TestScene test;
            test.addSurface().doubleSided = true;
            auto mesh = quadMesh(1);
            mesh->smooth = true;
            mesh->normals.assign(4, {0.6F, 0, 0.8F});
            test.addObject(
                mesh, 0,
                Imath::M44d().scale(V3d(width, 1, 1)) * Imath::M44d().rotate(V3d(0, turn, 0)));
            const V3d normal(0.6 * width, 0, 0.8);
            test.addSun(-normal);
            expectColor(colorOf(test), V3d(1));
            Told told;
            onePixel(test, probe(kDescribe));
            expectNumbers(told["geometricNormal"], {0, 0, 1});
            expectNumbers(told["worldNormal"], {normal.x, 0, 0.8});
        }
    }
}

TEST(FlagWord, NamesWhatAShaderMayChange) {
    QuadScene test;
    test.rig.ambient = V3d(0.5);
    test.scene.surfaces[0].baseColor = {1, 0, 0, 1};
    const auto paint = [&](std::int32_t flags) {
        return colorOf(test, probe(kPaint, flags, 0, 0, 1, 0.25F));
    };
    expectColor(paint(0), V3d(0.5, 0, 0));
    expectColor(paint(HOST_SHADER_COLOR), V3d(0, 0, 0.5));
    expectColor(paint(HOST_SHADER_LUMINOUS), V3d(1.5, 0, 0));
    expectColor(paint(HOST_SHADER_DIFFUSE), V3d(0, 0, 0));
    expectColor(paint(HOST_SHADER_TRANSPARENCY), V3d(toEncoded(0.75 * toLinear(0.5)), 0, 0));
    expectColor(paint(kAll), V3d(0, 0, toEncoded(0.75)));
    expectColor(colorOf(test, probe(kPaint, kAll, 0, 0, 1, 1)), V3d(0));
}

TEST(FlagWord, RecordsAreOnlyTheShadersToScribbleIn) {
    QuadScene test;
    expectColor(colorOf(test, probe(kScribble)), V3d(0.25, 0.5, 0.75));
}

TEST(ShaderResults, BadNumbersBecomeBlack) {
    QuadScene test;
    for (const float kind : {0.0F, 1.0F, 3.0F})
        expectColor(colorOf(test, probe(kSpoil, kAll, kind)), V3d(0));
    // A transparency that is none is none.
    expectColor(colorOf(test, probe(kSpoil, kAll, 2)), V3d(1));
}

TEST(ShaderResults, GlossRemainsWithItsShare) {
    QuadScene test;
    test.scene.surfaces[0].roughness = 0.5F;
    test.scene.surfaces[0].baseColor = {0, 0, 0, 1};
    test.addSun({0, 0, -1}, {1, 0.5, 0});
    // Mirrored straight back: the lobe's peak.
    expectColor(colorOf(test, probe(kPaint, 0)), V3d(0.25, 0.125, 0));
    test.rig.lights.clear();
    test.addLight(LightKind::Directional).makesHighlights = false;
    expectColor(colorOf(test, probe(kPaint, 0)), V3d(0));
}

TEST(Illumination, AnswersHereAndElsewhere) {
    QuadScene test;
    test.scene.surfaces[0].doubleSided = true;
    test.addSun({0, 0, -1}, V3d(0.25));
    test.addSun({0, 0, 1}, V3d(0.5));  // from behind: does not reach this side
    // Elsewhere: behind the quad, the other way about.
    expectColor(colorOf(test, probe(kMeasureLight, kAll, 0, 0, -1)), V3d(0.25, 0.5, 0));
    test.addQuad({0, 0, 3}, 0.25, 0);
    TestScene shadowed;
    shadowed.addSurface();
    shadowed.addQuad({0, 0, 0}, 1, 0);
    shadowed.addQuad({2, 0, 2}, 0.5, 0);
    shadowed.addSun({-1, 0, -1});
    expectColor(colorOf(shadowed, probe(kMeasureLight, kAll, 0.75F, 0, 0)), V3d(0, 1, 0));
    expectColor(colorOf(shadowed, probe(kMeasureLight, kAll, 0.25F, 0, 0)), V3d(0, 0, 0));
}

TEST(Tracing, GoesOnAlongTheViewingRay) {
    TestScene test;
    test.addSurface();
    for (int i = 0; i < 3; ++i)
        test.addQuad({0, 0, -1e-6 * i}, 1, 0);  // closer than any margin
    expectColor(colorOf(test, probe(kPassOn, kAll, 1)), V3d(1, 0.1, 0));
    // Without the flag, nothing is there.
    const std::int32_t noRays = kAll & ~HOST_SHADER_RAYTRACE;
    expectColor(colorOf(test, probe(kPassOn, noRays, 1)), V3d(1, 0, 0));
}

TEST(Tracing, EndsEightDeepAndCostsNoMoreForAskingAgain) {
    TestScene test;
    test.addSurface();
    for (int i = 0; i < 12; ++i)
        test.addQuad({0, 0, -0.5 * i}, 1, 0);
    for (const float times : {1.0F, 5.0F}) {
        RenderStats stats;
        const Picture picture = onePixel(test, probe(kPassOn, kAll, times), &stats);
        expectColor(displayed(picture, 0, 0), V3d(1, 0.4, 0));
        EXPECT_EQ(stats.evaluations, 9U);
    }
}

TEST(Tracing, ShadesWhatItMeets) {
    TestScene test;
    test.addSurface();
    Surface& clear = test.addSurface();
    clear.alphaMode = AlphaMode::Blend;
    clear.baseColor = {1, 1, 1, 0};
    test.addSurface().baseColor = {1, 0, 0, 1};
    test.addSurface();
    test.rig.ambient = V3d(0.5);
    test.addQuad({0, 0, 0.5}, 1, 0);
    test.addQuad({0, 0, 2}, 1, 1);  // wholly clear: not there
    const Object& red = test.addObject(
        quadMesh(1), 2,
        Imath::M44d().rotate(V3d(0, M_PI, 0)) * Imath::M44d().translate(V3d(0, 0, 3)));
    Renderer renderer(test.scene);
    SurfaceShaders shading(4);
    shading[0] = SurfaceShader{.block = probe(kLook, kAll, 0, 0, 1)};
    Camera camera = frontCamera({0, 0, 1}, 0.5);
    Told told;
    renderer.render(camera, test.rig, shading, PROBE_MODULE, squareOptions(1), {}, nullptr);
    expectNumbers(told["distance"], {2.5});
    expectNumbers(told["hitColor"], {0.5, 0, 0});
    expectNumbers(told["hitSource"], {0, 0, 0.5});
    expectNumbers(told["hitLength"], {2.5});
    EXPECT_EQ(told["hitObject"], Numbers{asNumber(&red)});
}

TEST(Modules, SayWhatTheyHaveToSayOnce) {
    QuadScene test;
    Told told;
    RenderOptions options = squareOptions(100);
    options.threads = 4;
    renderWith(test, frontCamera({0, 0, 5}, 0.5), options, PROBE_MODULE, probe(kGreet));
    EXPECT_EQ(told.count("loaded"), 1);
}

TEST(Modules, MustBeThereOnlyWhenAShaderNeedsThem) {
    QuadScene test;
    EXPECT_THROW(renderWith(test, frontCamera({0, 0, 5}, 0.5), squareOptions(1), "/no/module.so",
                            probe(kPaint)),
                 Error);
    renderPlain(test, frontCamera({0, 0, 5}, 0.5), squareOptions(1));
}

}  // namespace
}  // namespace tavora::studio
