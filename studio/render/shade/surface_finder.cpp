#include "studio/render/shade/surface_finder.h"

#include "studio/render/surface/normal_map.h"

namespace tavora::studio {

Hit SurfaceFinder::nextHit(const Ray& ray, const Hit& after, PriorVisibility& prior) {
    Hit hit;
    if (prior.cache != nullptr) {
        const CachedPath::Step step = prior.cache->next(prior.node, hit);
        if (step == CachedPath::Step::Hit) return hit;
        if (step == CachedPath::Step::Miss) return {};
    }
    ++rays_;
    scene_->nextHit(ray, after, hit);
    if (prior.cache != nullptr) prior.cache->keep(prior.node, hit);
    return hit;
}

double SurfaceFinder::alphaOf(const Ray& ray, const Hit& hit) const {
    const Facet facet = facetAt(*scene_, ray, hit);
    if (facet.uniformColor != nullptr) return facet.uniformColor->alpha;
    SurfacePoint point;
    setSurfacePoint(facet, ray, point);
    return alphaAt(scene_->index(), *facet.source().surface, point.meshPoint());
}

Hit SurfaceFinder::visibleHit(const Ray& ray, Hit hit, PriorVisibility& prior) {
    while (!hit.isNone()) {
        const int surface = scene_->index().meshes()[hit.mesh].surfaceIndex;
        if (scene_->material(surface).alphaMode != AlphaMode::Blend || alphaOf(ray, hit) > 0) break;
        hit = nextHit(ray, hit, prior);
    }
    return hit;
}

namespace {

BaseColor cachedBaseColor(const RayScene& scene, const SurfacePoint& point,
                          const PriorVisibility& prior) {
    if (prior.cache != nullptr) {
        if (const BaseColor* known = prior.cache->baseColor(prior.node)) return *known;
    }
    const Material& material = scene.material(point.surfaceIndex());
    const BaseColor color = baseColorAt(scene.index(), material, point.meshPoint());
    if (prior.cache != nullptr) prior.cache->keepBaseColor(prior.node, color);
    return color;
}

}  // namespace

BaseColor lookUpSurface(const RayScene& scene, SurfacePoint& point, const PriorVisibility& prior) {
    const Facet& facet = *point.facet;
    if (facet.isMapped) applyNormalMap(scene.index(), point);
    return facet.uniformColor != nullptr ? *facet.uniformColor
                                         : cachedBaseColor(scene, point, prior);
}

}  // namespace tavora::studio
