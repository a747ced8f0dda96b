#include "studio/render/shade/camera_sampler.h"

#include <algorithm>

#include "studio/render/image/display_encoding.h"
#include "studio/util/color.h"

namespace tavora::studio {
namespace {

/// What shows less than this is not looked for.
constexpr double kInvisible = 1e-4;

/// Facets are kept from one batch to the next: neighbouring pixels share them.
constexpr std::size_t kFacets = 4 * CameraSampler::kBatch;

bool mayBeTransparent(const RayScene& scene) {
    const std::size_t count = scene.index().scene().surfaces.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (scene.material(static_cast<int>(i)).alphaMode == AlphaMode::Blend) return true;
    }
    return false;
}

}  // namespace

CameraSampler::CameraSampler(const RayScene& scene, const LightSet& lights,
                             const WorkerShaders& shaders)
    : scene_(&scene),
      shader_(scene, lights, shaders, kBatch),
      finder_(scene),
      facets_(scene, kFacets),
      firstHits_(scene, kBatch),
      hasTransparent_(mayBeTransparent(scene)),
      x_(kBatch),
      y_(kBatch),
      rays_(kBatch),
      hits_(kBatch),
      cached_(kBatch),
      facetOf_(kBatch),
      countOf_(facets_.capacity()),
      order_(kBatch),
      rayOf_(kBatch),
      appearances_(kBatch),
      lightOf_(kBatch),
      layers_(kBatch) {
    unknown_.reserve(kBatch);
    active_.reserve(kBatch);
    next_.reserve(kBatch);
    hitFacets_.reserve(kBatch);
    encoded_.reserve(3 * kBatch);
    light_.resize(3 * kBatch);
}

void CameraSampler::sample(const CameraRays& camera, std::span<const CameraSample> samples,
                           std::span<CachedPath> paths, std::span<ShadedSample> results) {
    for (std::size_t first = 0; first < samples.size(); first += kBatch) {
        const std::size_t count = std::min(kBatch, samples.size() - first);
        sampleBatch(camera, samples.subspan(first, count),
                    paths.empty() ? paths : paths.subspan(first, count),
                    results.subspan(first, count));
    }
}

void CameraSampler::sampleBatch(const CameraRays& camera, std::span<const CameraSample> samples,
                                std::span<CachedPath> paths, std::span<ShadedSample> results) {
    for (std::size_t i = 0; i < samples.size(); ++i) {
        x_[i] = samples[i].position.x;
        y_[i] = samples[i].position.y;
        results[i] = {};
    }
    camera.generate(x_.data(), y_.data(), samples.size(), rays_);
    ray_ = rays_.ray(0);
    findFirstHits(samples.size(), paths);
    for (bool isFirst = true;; isFirst = false) {
        if (hasTransparent_) skipTransparent();
        if (active_.empty()) break;
        sortByFacet();
        fillBatch(samples, isFirst);
        shader_.light();
        shadeBatch(results, isFirst);
        toLight();
        composite(results, isFirst);
    }
}

/// A camera ray of the batch; valid until the next call. They differ by these two alone.
const Ray& CameraSampler::ray(std::uint32_t number) {
    ray_.origin = rays_.origins[number];
    ray_.direction = rays_.directions[number];
    return ray_;
}

/// By what is cached, else all together. Rays that hit nothing are done.
void CameraSampler::findFirstHits(std::size_t count, std::span<CachedPath> paths) {
    unknown_.clear();
    for (std::uint32_t i = 0; i < count; ++i) {
        hits_[i] = {};
        cached_[i] = {};
        if (!paths.empty() && paths[i].isKept()) cached_[i].path = &paths[i];
        if (cached_[i].next(hits_[i]) == CachedPath::Step::Unknown) unknown_.push_back(i);
    }
    firstHits_.find(rays_, unknown_, hits_);
    cameraRays_ += unknown_.size();
    for (const std::uint32_t i : unknown_)
        cached_[i].keep(hits_[i]);
    active_.clear();
    for (std::uint32_t i = 0; i < count; ++i) {
        if (!hits_[i].isNone()) active_.push_back({i, hits_[i], cached_[i]});
    }
}

/// Brings rays whose hit is on a wholly transparent surface to the first hit that is not.
void CameraSampler::skipTransparent() {
    for (ActiveRay& active : active_)
        active.hit = finder_.visibleHit(ray(active.ray), active.hit, active.cached);
    std::erase_if(active_, [](const ActiveRay& active) { return active.hit.isNone(); });
}

/// Orders the active rays so that those which hit one mesh, and one facet, follow one another.
void CameraSampler::sortByFacet() {
    facets_.reserve(active_.size());
    hitFacets_.clear();
    for (std::size_t i = 0; i < active_.size(); ++i) {
        const std::uint32_t facet = facets_.numberAt(ray(active_[i].ray), active_[i].hit);
        facetOf_[i] = facet;
        if (countOf_[facet]++ == 0) hitFacets_.push_back(facet);
    }
    const auto isBefore = [this](std::uint32_t a, std::uint32_t b) {
        return facets_[a].mesh < facets_[b].mesh;
    };
    if (!std::is_sorted(hitFacets_.begin(), hitFacets_.end(), isBefore))
        std::sort(hitFacets_.begin(), hitFacets_.end(), isBefore);
    std::uint32_t next = 0;
    for (const std::uint32_t facet : hitFacets_) {
        const std::uint32_t count = countOf_[facet];
        countOf_[facet] = next;
        next += count;
    }
    for (std::uint32_t i = 0; i < active_.size(); ++i)
        order_[countOf_[facetOf_[i]]++] = i;
    for (const std::uint32_t facet : hitFacets_)
        countOf_[facet] = 0;
}

void CameraSampler::fillBatch(std::span<const CameraSample> samples, bool isFirst) {
    HitBatch& batch = shader_.batch();
    batch.clear();
    for (std::size_t i = 0; i < active_.size(); ++i) {
        const ActiveRay& active = active_[order_[i]];
        const Facet& facet = facets_[facetOf_[order_[i]]];
        const SurfacePoint& point =
            batch.add(*scene_, facet, ray(active.ray), active.hit, {nullptr, active.cached});
        const NeighbourVisibility* neighbours = samples[active.ray].neighbours;
        if (isFirst && neighbours != nullptr) {
            batch.priors.back().neighbours =
                neighbours->at(facet.mesh, static_cast<float>(point.distance));
        }
        rayOf_[i] = active.ray;
    }
}

void CameraSampler::shadeBatch(std::span<ShadedSample> results, bool isFirst) {
    const HitBatch& batch = shader_.batch();
    for (std::size_t i = 0; i < batch.points.size(); ++i) {
        ShadedSample& result = results[rayOf_[i]];
        appearances_[i] = shader_.shade(i, rays_, rayOf_[i]);
        result.surfaces.add(shader_.takeShaded());
        if (!isFirst) continue;
        const SurfacePoint& point = batch.points[i];
        result.first = {point.facet->mesh, static_cast<float>(point.distance),
                        Imath::V3f(point.smoothNormal)};
        result.lights = shader_.seenLights();
    }
}

/// From display-referred colours, in which surfaces are shaded, to light. Neighbouring points
/// often show the same colour, or by turns the two on both sides of an edge.
void CameraSampler::toLight() {
    encoded_.clear();
    std::uint32_t last = 0;
    std::uint32_t before = 0;
    const auto isAt = [this](std::uint32_t at, const Imath::V3d& color) {
        return encoded_[at] == color.x && encoded_[at + 1] == color.y &&
               encoded_[at + 2] == color.z;
    };
    for (std::size_t i = 0; i < shader_.batch().points.size(); ++i) {
        const Imath::V3d& color = appearances_[i].color;
        if (encoded_.empty() || !isAt(last, color)) {
            std::swap(last, before);
            if (encoded_.empty() || !isAt(last, color)) {
                last = static_cast<std::uint32_t>(encoded_.size());
                encoded_.insert(encoded_.end(), {color.x, color.y, color.z});
            }
        }
        lightOf_[i] = last;
    }
    std::transform(encoded_.begin(), encoded_.end(), light_.begin(),
                   [](double value) { return toLinear(value); });
}

void CameraSampler::composite(std::span<ShadedSample> results, bool isFirst) {
    next_.clear();
    for (std::size_t i = 0; i < shader_.batch().points.size(); ++i) {
        ShadedSample& result = results[rayOf_[i]];
        if (!addLayer(i, result, isFirst)) continue;
        ActiveRay next = active_[order_[i]];
        next.hit = finder_.nextHit(ray(next.ray), next.hit, next.cached);
        if (!next.hit.isNone()) next_.push_back(next);
    }
    active_.swap(next_);
}

/// Lays a point's surface under those before it on its ray. Whether more shows behind it.
bool CameraSampler::addLayer(std::size_t point, ShadedSample& result, bool isFirst) {
    const Appearance& appearance = appearances_[point];
    const double* linear = &light_[lightOf_[point]];
    const Imath::V3d light(linear[0], linear[1], linear[2]);
    if (isFirst && appearance.transparency == 0) {
        result.radiance = {light, 1, pixel8Of(appearance.color)};
        return false;
    }
    Layers& layers = layers_[rayOf_[point]];
    if (isFirst) layers = {};
    layers.color += light * (layers.transmittance * (1 - appearance.transparency));
    layers.transmittance *= appearance.transparency;
    if (layers.transmittance < kInvisible) layers.transmittance = 0;
    result.radiance = radianceOf(layers);
    return layers.transmittance > 0;
}

Radiance CameraSampler::radianceOf(const Layers& layers) {
    const auto encoded = [](double linear) {
        return static_cast<std::uint8_t>(encodeByte(linear));
    };
    const auto alpha = static_cast<std::uint8_t>(255 - encoded(layers.transmittance));
    return {layers.color,
            1 - layers.transmittance,
            {encoded(layers.color.x), encoded(layers.color.y), encoded(layers.color.z), alpha}};
}

}  // namespace tavora::studio
