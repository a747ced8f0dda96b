#include "studio/render/sample_bundle.h"

#include <algorithm>
#include <limits>

namespace tavora::studio {
namespace {

constexpr std::size_t kMostRays = 512;
constexpr std::size_t kLeastRays = 32;
constexpr std::size_t kMostShadowRays = 6144;  // 80 bytes each

constexpr float kNothing = std::numeric_limits<float>::infinity();

std::size_t roomFor(std::size_t lights) {
    return std::clamp(kMostShadowRays / std::max<std::size_t>(lights, 1), kLeastRays, kMostRays);
}

}  // namespace

SampleBundle::SampleBundle(const RayScene& scene, const LightRig& lights)
    : scene_(&scene),
      lights_(lights.lights.size()),
      streams_(scene),
      arrivals_(scene, lights),
      hits_(roomFor(lights_)),
      met_(roomFor(lights_)),
      beams_(lights_),
      shares_(std::max<std::size_t>(met_.size() * lights_, 1)),
      passed_(met_.size()) {}

const MetSurface* SampleBundle::met(std::size_t ray) const {
    return met_[ray].hit.distance == kNothing ? nullptr : &met_[ray];
}

void SampleBundle::trace(std::span<const Ray> rays, const SampleShader& shader) {
    findSurfaces(rays);
    for (Beam& beam : beams_)
        beam.clear();
    std::fill_n(shares_.begin(), rays.size() * lights_, -1.0);
    for (std::size_t i = 0; i < rays.size(); ++i) {
        const MetSurface* surface = met(i);
        if (surface == nullptr || !shader.takesLight(*surface)) continue;
        aimAtLights(*surface, static_cast<std::uint32_t>(i), shader);
    }
    for (std::size_t light = 0; light < lights_; ++light)
        follow(beams_[light], light);
}

void SampleBundle::findSurfaces(std::span<const Ray> rays) {
    streams_.firstHits(rays, hits_);
    viewingRays_ += rays.size();
    for (std::size_t i = 0; i < rays.size(); ++i) {
        const MetSurface& neighbour = i > 0 ? met_[i - 1] : met_.back();
        HitKey& hit = met_[i].hit;
        hit = hits_[i];
        while (hit.distance != kNothing && !meetLike(neighbour, *scene_, rays[i], met_[i])) {
            ++viewingRays_;
            if (!scene_->nextHit(rays[i], hit, hit)) hit.distance = kNothing;
        }
    }
}

void SampleBundle::aimAtLights(const MetSurface& met, std::uint32_t ray,
                               const SampleShader& shader) {
    arrivals_.start(met.point);
    Way way{{}, ray};
    for (std::size_t light = 0; light < lights_; ++light) {
        if (shader.asksFor(met, light) && arrivals_.wantsRays(light, way.rays))
            beams_[light].push_back(way);
    }
}

void SampleBundle::follow(Beam& beam, std::size_t light) {
    while (step(beam))
        ;
    for (const Way& way : beam)
        shares_[way.viewing * lights_ + light] = way.rays.share();
}

/// One ray on each way that has one left; false when none has. Neighbours go to
/// the same place in the light.
bool SampleBundle::step(Beam& beam) {
    shadows_.clear();
    walking_.clear();
    Ray ray;
    for (std::size_t i = 0; i < beam.size(); ++i) {
        if (!beam[i].rays.next(ray)) continue;
        shadows_.push_back(ray);
        walking_.push_back(static_cast<std::uint32_t>(i));
    }
    streams_.transmittances(shadows_, passed_);
    shadowRays_ += shadows_.size();
    for (std::size_t i = 0; i < walking_.size(); ++i)
        beam[walking_[i]].rays.add(passed_[i]);
    return !walking_.empty();
}

}  // namespace tavora::studio
