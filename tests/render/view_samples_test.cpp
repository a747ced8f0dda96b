// Places looked at together show what each shows alone, to the bit.

#include "studio/render/view_samples.h"

#include <gtest/gtest.h>
#include <vector>

#include "studio/link/module_copy.h"
#include "studio/link/shader.h"
#include "studio/scene/settings/settings.h"
#include "studio/services/registry.h"
#include "studio/services/service_binding.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

StateBlock inkedLook() {
    Settings settings = settingsOf(newShaderSettings(ModuleCopy(TAVORA_MODULE, findService)));
    settings["inkoverEnable"] = true;
    settings["highlightEnable"] = "On";
    return blockOf(settings);
}

/// A seamed ball under panes, one wholly clear, and a leaf with holes; of each
/// kind of light some; shaders on some surfaces, one unlit.
struct Conservatory : TestScene {
    SceneIndex index;
    RayScene rays;
    SurfaceShaders shading = SurfaceShaders(5);

    Conservatory() : index(furnished().scene), rays(index) {
        shading[0] = shading[1] = SurfaceShader{.block = inkedLook()};
    }

  private:
    void addSurfaces() {
        addSurface();
        for (const float alpha : {0.4F, 0.0F}) {
            Surface& pane = addSurface();
            pane.alphaMode = AlphaMode::Blend;
            pane.baseColor = {0.2F, 0.6F, 1, alpha};
            pane.doubleSided = alpha > 0;
        }
        Surface& leaf = addSurface();
        leaf.alphaMode = AlphaMode::Mask;
        leaf.doubleSided = true;
        leaf.baseColorTexture = TextureUse{};
        leaf.baseColorTexture->image =
            addImage(2, 2, {0, 200, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 90, 200, 0, 255});
        addSurface().unlit = true;
    }

    const TestScene& furnished() {
        addSurfaces();
        addObject(sphereMesh(0.9, 24, 12), 0, Imath::M44d().translate(V3d(-0.8, 0, 0)));
        addQuad({0.2, 0.3, 1.5}, 0.8, 1);
        addQuad({0, 0, 2}, 1.2, 2);
        addQuad({0.9, -0.6, 0.5}, 0.7, 3);
        addQuad({-1, -1, 1}, 0.4, 4);
        addQuad({0.3, 0, -2}, 1.7, 0);
        addSun({0.3, -0.4, -1}, V3d(0.7, 0.6, 0.5));
        addSun({0, -0.4, -1}, V3d(0.2));
        addLight(LightKind::Point, V3d(0.2, 0.3, 0.5)).position = {2, 3, 4};
        addLight(LightKind::Spot, V3d(0.5)).position = {0, 0, 6};
        addLight(LightKind::Directional, V3d(0.1)).direction = {0.6, 0, -0.8};
        soften(0.3, 0.2);
        rig.lights[0].points.clear();
        rig.lights[0].castsShadow = false;
        scene.surfaces[1].receivesShadows = scene.surfaces[3].castsShadows = false;
        rig.ambient = V3d(0.1);
        return *this;
    }
};

Camera obliqueCamera() {
    Camera camera;
    camera.verticalFov = 0.6;
    camera.cameraToWorld =
        Imath::M44d().rotate(V3d(-0.05, 0.1, 0.02)) * Imath::M44d().translate(V3d(0.7, 0.3, 7));
    return camera;
}

bool isSame(const ViewSample& a, const ViewSample& b) {
    return a.sight == b.sight && a.first.mesh == b.first.mesh &&
           a.first.distance == b.first.distance && a.first.normal == b.first.normal;
}

TEST(ViewSamples, ShowTogetherWhatEachShowsAlone) {
    const Conservatory scene;
    const ServiceBinding binding(scene.index, scene.rig);
    const LaneShaders shaders(scene.index, scene.shading, TAVORA_MODULE);
    for (const Camera& camera : {frontCamera({0.1, 0, 8}, 2), obliqueCamera()}) {
        const View view(camera, 64, 48, 1);
        std::vector<ViewPlace> places;
        for (int i = 0; i < 2 * 64 * 48; ++i)
            places.push_back({{i % 128 * 0.5, i / 128 + 0.5}});
        ViewSampler together(scene.rays, scene.rig, shaders, view);
        std::vector<ViewSample> samples(places.size());
        together.look(places, samples);
        SampleShader alone(scene.rays, scene.rig, shaders);
        ColorDecoder decoder;
        for (std::size_t i = 0; i < places.size(); ++i) {
            ViewSample sample;
            sample.sight =
                see(alone, decoder, view.rayThrough(places[i].at.x, places[i].at.y), &sample.first);
            ASSERT_TRUE(isSame(samples[i], sample)) << i;
        }
        EXPECT_EQ(together.viewingRays(), alone.viewingRays());
        // Some are traced ahead that are not asked for in the end.
        EXPECT_GE(together.shadowRays(), alone.shadowRays());
        EXPECT_LT(together.shadowRays(), alone.shadowRays() * 5 / 4);
        EXPECT_EQ(together.evaluations(), alone.evaluations());
        EXPECT_GT(alone.evaluations(), 1000U);
    }
}

}  // namespace
}  // namespace tavora::studio
