#pragma once

#include <ImathVec.h>
#include <cstdint>

#include "studio/render/known_shadows.h"
#include "studio/render/ray_scene.h"
#include "studio/render/sample_shader.h"
#include "studio/render/seen_levels.h"

namespace tavora::studio {

/// What a viewing ray sees of the scene, whatever lies behind the scene. Here, and
/// from here on, colours are light: they may be added and averaged.
struct Sight {
    Imath::V3d color{0, 0, 0};  ///< scene-linear, premultiplied by `alpha`
    double alpha = 0;           ///< 0..1
    /// Tell how far sights look apart at most, whatever they are laid over: of the
    /// premultiplied colour and of what shows through, both encoded.
    SeenLevels levels{};

    bool operator==(const Sight&) const = default;
};

/// From display-referred colours, which surfaces are shaded in, to light. One thread
/// at a time.
class ColorDecoder {
  public:
    /// What a ray sees that meets an opaque surface of this colour. Valid until the
    /// next call.
    const Sight& opaque(const Imath::V3d& color);

  private:
    struct Decoded {
        Imath::V3d from{0, 0, 0};
        Sight sight{{0, 0, 0}, 1, {0, 0, 0, 255}};
    };
    // Neighbouring samples often see the same, or by turns the two sides of a border.
    Decoded last_;
    Decoded before_;
};

/// What a viewing ray meets first of all that is not wholly clear.
struct FirstSurface {
    std::uint32_t mesh = MeshLights::kNone;  ///< in RayScene
    float distance = 0;                      ///< along the ray
    Imath::V3f normal{0, 0, 0};  ///< interpolated, unit, on the side that is seen, in the world
};

/// All surfaces along `ray`, front to back, each over what lies behind it by its
/// transparency, in linear light. Unless null, `first` becomes what is met first, and
/// stays as it is when nothing is.
Sight see(SampleShader& shader, ColorDecoder& decoder, const Ray& ray,
          FirstSurface* first = nullptr);

/// What a viewing ray sees, and what it meets first.
struct ViewSample {
    Sight sight;
    FirstSurface first;
    LightsMet lights{};  ///< that the first surface asked for, if they are noted
};

/// see() into `sample` where the first surface is known; `lights` as for
/// SampleShader::shadeMet(). The lights are noted if `notesLights`.
void seeFrom(SampleShader& shader, ColorDecoder& decoder, const Ray& ray, const MetSurface& met,
             const KnownLights& lights, bool notesLights, ViewSample& sample);

}  // namespace tavora::studio
