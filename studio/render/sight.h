#pragma once

#include <ImathVec.h>
#include <cstdint>
#include <optional>
#include <span>

#include "studio/render/known_shadows.h"
#include "studio/render/ray_scene.h"
#include "studio/render/sample_shader.h"

namespace tavora::studio {

/// What a viewing ray sees, display-referred.
struct Sight {
    Imath::V3d color{0, 0, 0};  ///< premultiplied by `alpha`
    double alpha = 0;           ///< 0..1; 1 with a background

    bool operator==(const Sight&) const = default;
};

/// What a viewing ray meets first of all that is not wholly clear.
struct FirstSurface {
    std::uint32_t mesh = MeshLights::kNone;  ///< in RayScene
    float distance = 0;                      ///< along the ray
    Imath::V3f normal{0, 0, 0};  ///< interpolated, unit, on the side that is seen, in the world
};

/// What a ray sees that meets nothing.
Sight seeNothing(const std::optional<Imath::V3d>& background);

/// All surfaces along `ray`, front to back, each over what lies behind it by its
/// transparency, over the background. Unless null, `first` becomes what is met
/// first, and stays as it is when nothing is.
Sight see(SampleShader& shader, const Ray& ray, const std::optional<Imath::V3d>& background,
          FirstSurface* first = nullptr);

/// What a viewing ray sees, and what it meets first.
struct ViewSample {
    Sight sight;
    FirstSurface first;
    LightsMet lights{};  ///< that the first surface asked for, if they are noted
};

/// see() into `sample` where the first surface is known; `lights` as for
/// SampleShader::shadeMet(). The lights are noted if `notesLights`.
void seeFrom(SampleShader& shader, const Ray& ray, const MetSurface& met, const KnownLights& lights,
             const std::optional<Imath::V3d>& background, bool notesLights, ViewSample& sample);

}  // namespace tavora::studio
