#include "studio/render/surface/pick.h"

#include "studio/render/surface/surface_point.h"
#include "studio/render/trace/camera_rays.h"

namespace tavora::studio {

std::optional<Picked> pick(const RayScene& scene, const Camera& camera, int width, int height,
                           int x, int y) {
    if (x < 0 || y < 0 || x >= width || y >= height) return std::nullopt;
    const Ray ray = CameraRays(camera, width, height, 1).through(x + 0.5, y + 0.5);
    for (Hit hit; scene.nextHit(ray, hit, hit);) {
        const Facet facet = facetAt(scene, ray, hit);
        SurfacePoint point;
        setSurfacePoint(facet, ray, point);
        const int surface = point.surfaceIndex();
        const BaseColor color =
            baseColorAt(scene.index(), scene.material(surface), point.meshPoint());
        if (color.alpha > 0) return Picked{static_cast<std::size_t>(surface), point.position};
    }
    return std::nullopt;
}

}  // namespace tavora::studio
