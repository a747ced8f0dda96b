#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "studio/scene/scene.h"
#include "studio/scene/settings/settings.h"
#include "studio/setup/report.h"
#include "studio/setup/shader_class.h"
#include "studio/setup/shading_request.h"

namespace tavora::studio {

/// What goes on one surface.
struct PlannedSurface {
    std::optional<Settings> settings;  ///< none: no shader
    bool enabled = true;               ///< as the scene file says; a look turns it on
    bool touched = false;              ///< by a look or a change on the command line
};

/// Whether the scene file keeps a shader on any surface.
bool storesShaders(const Scene& scene);

/// Whether a surface of it is shaded as an avatar's material says.
bool hasAvatars(const Scene& scene);

/// A scene that says nothing of shading still makes a picture worth keeping: the
/// request with a default look when it asks for none and none is stored, which is
/// noted in the report; else the request as it is.
ShadingRequest withDefaultLook(const Scene& scene, ShadingRequest request, Report& report);

/// Settles the settings of every surface: the last look that names it, laid over
/// the shader's built-in settings, else what the scene stores, else the zones of an
/// avatar's material, else the request's default look; over that the single changes; plain where
/// asked. What the user stored as default plays no part, so that everybody gets the same picture.
/// Damaged settings and lights that the scene has not are reported as warnings.
/// Throws Error, Fault::Usage for names that match nothing, Fault::Scene for looks.
std::vector<PlannedSurface> planSurfaces(const Scene& scene, const ShadingRequest& request,
                                         const ShaderClass& shader,
                                         std::span<const std::string> lightNames, Report& report);

}  // namespace tavora::studio
