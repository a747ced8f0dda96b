#include "studio/render/shade/surface_finder.h"

#include "studio/render/surface/normal_map.h"

namespace tavora::studio {

Hit SurfaceFinder::nextHit(const Ray& ray, const Hit& after, CachedHit& cached) {
    Hit hit;
    const CachedPath::Step step = cached.next(hit);
    if (step == CachedPath::Step::Hit) return hit;
    if (step == CachedPath::Step::Miss) return {};
    ++rays_;
    scene_->nextHit(ray, after, hit);
    cached.keep(hit);
    return hit;
}

double SurfaceFinder::alphaOf(const Ray& ray, const Hit& hit) const {
    const Facet facet = facetAt(*scene_, ray, hit);
    if (facet.uniformColor != nullptr) return facet.uniformColor->alpha;
    SurfacePoint point;
    setSurfacePoint(facet, ray, point);
    return alphaAt(scene_->index(), *facet.source().surface, point.meshPoint());
}

Hit SurfaceFinder::visibleHit(const Ray& ray, Hit hit, CachedHit& cached) {
    while (!hit.isNone()) {
        const int surface = scene_->index().meshes()[hit.mesh].surfaceIndex;
        if (scene_->material(surface).alphaMode != AlphaMode::Blend || alphaOf(ray, hit) > 0) break;
        hit = nextHit(ray, hit, cached);
    }
    return hit;
}

namespace {

BaseColor cachedBaseColor(const RayScene& scene, const SurfacePoint& point,
                          const CachedHit& cached) {
    if (const BaseColor* known = cached.baseColor()) return *known;
    const Material& material = scene.material(point.surfaceIndex());
    const BaseColor color = baseColorAt(scene.index(), material, point.meshPoint());
    cached.keepBaseColor(color);
    return color;
}

}  // namespace

BaseColor lookUpSurface(const RayScene& scene, SurfacePoint& point, const CachedHit& cached) {
    const Facet& facet = *point.facet;
    if (facet.isMapped) applyNormalMap(scene.index(), point);
    return facet.uniformColor != nullptr ? *facet.uniformColor
                                         : cachedBaseColor(scene, point, cached);
}

}  // namespace tavora::studio
