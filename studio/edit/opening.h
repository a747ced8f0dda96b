#pragma once

#include <string>
#include <vector>

#include "studio/edit/records.h"
#include "studio/scene/scene.h"
#include "studio/scene/surface_shader.h"
#include "studio/setup/report.h"
#include "studio/setup/shading_request.h"

namespace tavora::studio {

/// What is on the surfaces when a scene is opened, by surface.
struct OpenedSurfaces {
    SurfaceShaders saved;  ///< what the file holds
    SurfaceShaders shown;  ///< what they wear: saved, looks, changes
    bool asked = true;     ///< what differs is the user's wish, not a look that stands in
};

/// Settles it as planSurfaces() does, to the bit as a record keeps it. A shader
/// that the request leaves out is turned off. Throws what planSurfaces() throws.
OpenedSurfaces openSurfaces(const Scene& scene, const ShadingRequest& request, Records& records,
                            Report& report);

}  // namespace tavora::studio
