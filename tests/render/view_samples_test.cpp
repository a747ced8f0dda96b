// Places looked at together show what each shows alone, to the bit.

#include "studio/render/view_samples.h"

#include <gtest/gtest.h>
#include <vector>

#include "studio/services/service_binding.h"
#include "tests/render/room.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

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
    Room room;
    room.addLights(0.3, 0.2);
    room.addSun({0, -0.4, -1}, V3d(0.2));
    room.rig.lights[0].castsShadow = false;
    const SceneIndex index(room.scene);
    const RayScene rays(index);
    const ServiceBinding binding(index, room.rig);
    SurfaceShaders shading(kSign + 1);
    shading[kBall] = shading[kPane] =
        SurfaceShader{.block = look({{"inkoverEnable", true}, {"highlightEnable", "On"}})};
    const LaneShaders shaders(index, shading, TAVORA_MODULE);
    for (const Camera& camera : {roomCamera(), obliqueCamera()}) {
        const View view(camera, 64, 48, 1);
        std::vector<ViewPlace> places;
        for (int i = 0; i < 2 * 64 * 48; ++i)
            places.push_back({{i % 128 * 0.5, i / 128 + 0.5}});
        ViewSampler together(rays, room.rig, shaders, view);
        std::vector<ViewSample> samples(places.size());
        together.look(places, samples);
        SampleShader alone(rays, room.rig, shaders);
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
