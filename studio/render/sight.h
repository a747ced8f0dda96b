#pragma once

#include <ImathVec.h>
#include <optional>

#include "studio/render/ray_scene.h"
#include "studio/render/sample_shader.h"

namespace tavora::studio {

/// What a viewing ray sees, display-referred.
struct Sight {
    Imath::V3d color{0, 0, 0};  ///< premultiplied by `alpha`
    double alpha = 0;           ///< 0..1; 1 with a background
};

/// All surfaces along `ray`, front to back, each over what lies behind it by its
/// transparency, over the background.
Sight see(SampleShader& shader, const Ray& ray, const std::optional<Imath::V3d>& background);

}  // namespace tavora::studio
