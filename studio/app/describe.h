#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "studio/scene/scene.h"

/// What a scene holds, for `tavora info`.
namespace tavora::studio {

/// The module that `option` finds, with its classes; without a module its
/// "file" is null and "problem" says why: part of the answer, not a failure.
nlohmann::ordered_json describeModule(const std::string& option);

/// The scene for programs and for people; `module` as describeModule gave it.
nlohmann::ordered_json sceneJson(const Scene& scene, const nlohmann::ordered_json& module);
std::string sceneText(const Scene& scene, const nlohmann::ordered_json& module);

/// Triangles that are drawn: those of a mesh once for each object that uses it.
std::size_t triangleCount(const Scene& scene);

const char* nameOf(AlphaMode mode);
const char* nameOf(LightKind kind);

}  // namespace tavora::studio
