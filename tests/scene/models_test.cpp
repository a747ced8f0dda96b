// Every real model: the counts of its maker's documentation, and data that the
// renderer can rely on.

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

#include "tests/scene/gltf_builder.h"

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

/// What the renderer relies on, for every mesh.
void expectSound(const Mesh& mesh) {
    const auto fits = [&](const auto& values) {
        return values.empty() || values.size() == mesh.positions.size();
    };
    ASSERT_EQ(mesh.normals.size(), mesh.positions.size());
    EXPECT_TRUE(fits(mesh.colors) && std::all_of(mesh.uvs.begin(), mesh.uvs.end(), fits));
    std::size_t odd = 0;
    for (std::size_t i = 0; i < mesh.positions.size(); ++i) {
        if (!std::isfinite(mesh.positions[i].length2())) ++odd;
        if (std::abs(mesh.normals[i].length2() - 1) > 1e-5F) ++odd;
    }
    for (const auto& triangle : mesh.triangles)
        for (std::uint32_t i : triangle)
            if (i >= mesh.positions.size()) ++odd;
    EXPECT_EQ(odd, 0U) << mesh.name;
}

TEST_P(Models, ReadWholeAndSound) {
    const std::filesystem::path file = std::filesystem::path(TAVORA_MODELS) / GetParam().file;
    if (!std::filesystem::exists(file)) GTEST_SKIP() << "no model " << file;
    const Scene scene = readGltf(file);
    std::size_t triangles = 0;
    for (const auto& object : scene.objects) {
        for (const Part& part : object->parts) {
            triangles += part.mesh->triangles.size();
            expectSound(*part.mesh);
        }
    }
    EXPECT_EQ(triangles, GetParam().drawn);
    EXPECT_EQ(scene.surfaces.size(), GetParam().materials + 1);
    EXPECT_EQ(scene.images.size(), GetParam().images);
    EXPECT_EQ(scene.lights.size(), GetParam().lights);
    EXPECT_EQ(scene.cameras.size(), GetParam().cameras);
    EXPECT_EQ(scene.animations.size(), GetParam().animations);
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
