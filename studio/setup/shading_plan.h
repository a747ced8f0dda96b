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

/// Whether the scene's file stores a shader for any surface.
bool storesShaders(const Scene& scene);

/// Whether the scene has a surface with the material of an avatar.
bool hasAvatars(const Scene& scene);

/// Adds a default look to a request without looks if the scene stores no shaders, so that the
/// picture does not look plain, and notes this in the report. Else returns the request as it
/// is.
ShadingRequest withDefaultLook(const Scene& scene, ShadingRequest request, Report& report);

/// The surfaces to which a look applies, by index. Throws Error, Fault::Usage, for a name that
/// matches none.
std::vector<std::size_t> surfacesOf(const Scene& scene, const LookChoice& choice);

/// Determines the shader of every surface. The settings are the first of these that the
/// surface has: the last look in the request that matches it, applied to the built-in
/// settings; what the scene stores, converted to the current version of blocks; the zones for
/// an avatar's material; the request's default look. Then the request's single changes are
/// applied, and the shaders of its plain surfaces removed. A look enables a shader that is
/// stored as disabled. Defaults that the user stored are ignored, so that everybody gets the
/// same picture. Damaged settings, and lights that the scene does not have, are reported as
/// warnings. Throws Error: Fault::Usage for a name that matches nothing and for an invalid
/// change, Fault::Scene for an invalid look.
SurfaceShaders planSurfaces(const Scene& scene, const ShadingRequest& request,
                            const ShaderClass& shader, std::span<const std::string> lightNames,
                            Report& report);

}  // namespace tavora::studio
