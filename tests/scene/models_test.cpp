// Every real model: the counts of its maker's documentation, and data that the
// renderer can rely on.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "studio/scene/gltf/reader.h"
#include "tests/scene/sound_scene.h"

namespace tavora::studio {
namespace {

struct Model {
    const char* file;
    std::size_t drawn;  ///< triangles, a mesh counted for each node that uses it
    std::size_t materials;
    std::size_t images;  ///< used by what is read
    std::size_t lights = 0;
    std::size_t cameras = 0;
    std::size_t animations = 0;
};

class Models : public testing::TestWithParam<Model> {};

TEST_P(Models, ReadWholeAndSound) {
    const Model& model = GetParam();
    const std::filesystem::path file = std::filesystem::path(TAVORA_MODELS) / model.file;
    ASSERT_TRUE(exists(file)) << "configure with TAVORA_MODELS, the folder that holds " << file;
    const Scene scene = readGltf(file);
    EXPECT_EQ(faultOf(scene), "");
    std::size_t triangles = 0;
    for (const auto& object : scene.objects) {
        for (const Part& part : object->parts)
            triangles += part.mesh->triangles.size();
    }
    EXPECT_EQ(triangles, model.drawn);
    EXPECT_THAT((std::vector{scene.surfaces.size(), scene.images.size(), scene.lights.size(),
                             scene.cameras.size(), scene.animations.size()}),
                testing::ElementsAre(model.materials + 1, model.images, model.lights, model.cameras,
                                     model.animations));
    EXPECT_TRUE(scene.warnings.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Files, Models,
    testing::Values(Model{"Fox.glb", 576, 1, 1, 0, 0, 3},
                    Model{"CesiumMan.glb", 4672, 1, 1, 0, 0, 1},
                    Model{"Knight.glb", 6952, 1, 1, 0, 0, 76}, Model{"Suzanne.glb", 3936, 1, 1},
                    Model{"Dogue.glb", 4736, 5, 0}, Model{"JapaneseBridgeGarden.glb", 21883, 13, 0},
                    Model{"HighPolyStillLife.glb", 569077, 14, 0},
                    Model{"CesiumMilkTruck.glb", 3624, 4, 1, 0, 0, 1},
                    Model{"AlphaBlendModeTest.glb", 61, 6, 7, 0, 1},
                    Model{"MorphStressTest.gltf", 2412, 2, 2, 0, 0, 3},
                    Model{"SimpleSparseAccessor/SimpleSparseAccessor.gltf", 12, 0, 0},
                    Model{"TextureTransformTest/TextureTransformTest.gltf", 24, 9, 5},
                    Model{"VertexColorTest/VertexColorTest.gltf", 36, 2, 2},
                    Model{"InterpolationTest/InterpolationTest.gltf", 110, 10, 1, 0, 0, 9},
                    Model{"PointLightsAndCamera/lightCulling.gltf", 12, 1, 0, 4, 1},
                    Model{"SphereLights/sphere_lights.gltf", 224, 1, 2, 4},
                    Model{"ambulance/model.gltf", 2588, 8, 0}),
    [](const auto& tested) {
        std::string name = std::filesystem::path(tested.param.file).stem();
        return name == "model" ? std::string("ambulance") : name;
    });

}  // namespace
}  // namespace tavora::studio
