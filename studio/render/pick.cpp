#include "studio/render/pick.h"

#include "studio/render/surface_point.h"
#include "studio/render/view.h"

namespace tavora::studio {

std::optional<Picked> pick(const RayScene& scene, const Camera& camera, int width, int height,
                           int x, int y) {
    if (x < 0 || y < 0 || x >= width || y >= height) return std::nullopt;
    const Ray ray = View(camera, width, height, 1).rayThrough(x + 0.5, y + 0.5);
    for (Hit hit; scene.nextHit(ray, hit, hit);) {
        const Facet facet = facetAt(scene, ray, hit);
        SurfacePoint point;
        setSurfacePoint(facet, ray, point);
        const int surface = point.surfaceIndex();
        const OwnColor own = ownColor(scene.index(), scene.traits(surface), point.meshPoint());
        if (own.alpha > 0) return Picked{static_cast<std::size_t>(surface), point.position};
    }
    return std::nullopt;
}

}  // namespace tavora::studio
