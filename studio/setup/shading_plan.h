#pragma once

#include <span>
#include <string>
#include <vector>

#include "studio/scene/scene.h"
#include "studio/scene/surface_shader.h"
#include "studio/setup/report.h"
#include "studio/setup/shader_class.h"
#include "studio/setup/shading_request.h"

namespace tavora::studio {

/// Whether the scene file keeps a shader on any surface.
bool storesShaders(const Scene& scene);

/// Whether a surface of it is shaded as an avatar's material says.
bool hasAvatars(const Scene& scene);

/// A scene that says nothing of shading still makes a picture worth keeping: the
/// request with a default look when it asks for none and none is stored, which is
/// noted in the report; else the request as it is.
ShadingRequest withDefaultLook(const Scene& scene, ShadingRequest request, Report& report);

/// The surfaces that a look is meant for, by index. Throws Error, Fault::Usage.
std::vector<std::size_t> surfacesOf(const Scene& scene, const LookChoice& choice);

/// Settles the shader of every surface: the last look that names it, laid over
/// the shader's built-in settings, else what the scene stores, as a block of the version that is
/// written, else the zones of an avatar's material, else the request's default look; over that
/// the single changes; plain where asked. A look turns a shader on that the file keeps off. What
/// the user stored as default plays no part, so that everybody gets the same picture. Damaged
/// settings and lights that the scene has not are reported as warnings. Throws Error, Fault::Usage
/// for names that match nothing, Fault::Scene for looks.
SurfaceShaders planSurfaces(const Scene& scene, const ShadingRequest& request,
                            const ShaderClass& shader, std::span<const std::string> lightNames,
                            Report& report);

}  // namespace tavora::studio
