#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "studio/scene/lighting/light_set.h"
#include "studio/scene/scene.h"

/// What frames are measured on. Lights have no size, so that each asks for one shadow ray
/// a hit.
namespace tavora::bench {

struct BenchScene {
    std::string name;
    studio::Scene scene;
    studio::Camera camera;
    studio::LightSet lights;
    studio::SurfaceShaders shaders;
    /// Those of `lights` that the surfaces' settings let count: all but in "many lights".
    std::vector<const studio::Light*> countedLights;
};

struct SceneFiles {
    std::filesystem::path module;
    std::filesystem::path models;  ///< the folder of glTF files that "models" shows
};

/// The scenes that are measured unless one is asked for.
const std::vector<std::string>& sceneNames();

/// The scene of that name, or one of a glTF file with the camera and the lights that it has or
/// is given. Throws std::exception where a file is missing or cannot be used.
BenchScene makeScene(const std::string& nameOrFile, const SceneFiles& files, double aspect);

}  // namespace tavora::bench
