#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "studio/scene/scene.h"

/// The output of `tavora info`.
namespace tavora::studio {

/// Describes the module that findModule(option) finds, with its classes. When there is none,
/// "file" is null and "problem" says why; that is no error.
nlohmann::ordered_json describeModule(const std::string& option);

/// Describes a scene for programs and for people; `module` is from describeModule().
nlohmann::ordered_json sceneJson(const Scene& scene, const nlohmann::ordered_json& module);
std::string sceneText(const Scene& scene, const nlohmann::ordered_json& module);

/// The number of triangles that are drawn: a mesh counts once for each object that uses it.
std::size_t triangleCount(const Scene& scene);

const char* nameOf(AlphaMode mode);
const char* nameOf(LightKind kind);

}  // namespace tavora::studio
