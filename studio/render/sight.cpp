#include "studio/render/sight.h"

namespace tavora::studio {
namespace {

/// What shows less than this is not looked for.
constexpr double kInvisible = 1e-4;

}  // namespace

Sight see(SampleShader& shader, const Ray& ray, const std::optional<Imath::V3d>& background,
          FirstSurface* first) {
    Sight sight;
    double through = 1;
    HitKey hit;
    Appearance surface;
    while (shader.shadeNext(ray, hit, hit, surface)) {
        if (first != nullptr) {
            *first = {hit.mesh, hit.distance, Imath::V3f(shader.point().normal)};
            first = nullptr;
        }
        sight.color += surface.color * (through * (1 - surface.transparency));
        through *= surface.transparency;
        if (through < kInvisible) {
            through = 0;
            break;
        }
    }
    if (background) {
        sight.color += *background * through;
        through = 0;
    }
    sight.alpha = 1 - through;
    return sight;
}

}  // namespace tavora::studio
