#include "studio/render/sample_bundle.h"

#include <algorithm>
#include <limits>

namespace tavora::studio {
namespace {

constexpr std::size_t kRoom = 256;

constexpr float kNothing = std::numeric_limits<float>::infinity();

}  // namespace

SampleBundle::SampleBundle(const RayScene& scene, const LightRig& lights)
    : scene_(&scene),
      rig_(&lights),
      lights_(lights.lights.size()),
      viewing_(scene),
      shadows_(scene),
      hits_(kRoom),
      met_(kRoom),
      shares_(std::max<std::size_t>(kRoom * lights_, 1)) {}

const MetSurface* SampleBundle::met(std::size_t ray) const {
    return met_[ray].hit.distance == kNothing ? nullptr : &met_[ray];
}

void SampleBundle::trace(std::span<const Ray> rays, const SampleShader& shader) {
    findSurfaces(rays);
    std::fill_n(shares_.begin(), rays.size() * lights_, -1.0);
    stations_.clear();
    for (std::size_t i = 0; i < rays.size(); ++i) {
        const MetSurface* surface = met(i);
        if (surface == nullptr || !shader.takesLight(*surface)) continue;
        stations_.push_back(
            {shadowRayFrom(surface->point), surface->point.normal, static_cast<std::uint32_t>(i)});
    }
    for (std::size_t light = 0; light < lights_; ++light) {
        if (rig_->lights[light].points.empty()) {
            goToMiddle(light, shader);
        } else {
            goToPoints(light, shader);
        }
    }
}

void SampleBundle::findSurfaces(std::span<const Ray> rays) {
    viewing_.firstHits(rays, hits_);
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

/// Whether the light, shadows aside, shines on the side that is seen, and is
/// likely to be asked for.
bool SampleBundle::isReached(const Station& station, std::size_t light, const SampleShader& shader,
                             LitPlace& place) const {
    const MetSurface& surface = met_[station.viewing];
    if (!shader.asksFor(surface, light)) return false;
    const LitLight& lit = rig_->lights[light];
    if (lit.light->kind == LightKind::Directional) {
        place.direction = lit.light->direction;
        place.distance = std::numeric_limits<double>::infinity();
    } else {
        Imath::V3d color;
        place.position = surface.point.position;
        place.distance = arrivingLight(*rig_, lit, place.position, place.direction, color);
    }
    place.facing = &station.normal;
    return place.distance >= 0 && -place.direction.dot(station.normal) > 0;
}

/// One ray from each station to a light without a size.
void SampleBundle::goToMiddle(std::size_t light, const SampleShader& shader) {
    shadows_.clear();
    going_.clear();
    LitPlace place;
    for (const Station& station : stations_) {
        if (!isReached(station, light, shader, place)) continue;
        Ray ray = station.toLight;
        if (!turnToMiddle(place, ray)) continue;
        shadows_.add(ray);
        going_.push_back(station.viewing);
    }
    const std::span<const double> passed = shadows_.trace();
    for (std::size_t i = 0; i < passed.size(); ++i)
        share(going_[i], light) = passed[i];
    shadowRays_ += passed.size();
}

void SampleBundle::goToPoints(std::size_t light, const SampleShader& shader) {
    ways_.clear();
    Way way;
    LitPlace place;
    for (const Station& station : stations_) {
        way.viewing = station.viewing;
        if (isReached(station, light, shader, place) &&
            way.rays.aim(station.toLight, rig_->lights[light], place)) {
            ways_.push_back(way);
        }
    }
    while (stepToPoints())
        ;
    for (const Way& gone : ways_)
        share(gone.viewing, light) = gone.rays.share();
}

/// One ray on each way that has one left; false when none has. Neighbours go to
/// the same place in the light.
bool SampleBundle::stepToPoints() {
    shadows_.clear();
    going_.clear();
    Ray ray;
    for (std::size_t i = 0; i < ways_.size(); ++i) {
        if (!ways_[i].rays.next(ray)) continue;
        shadows_.add(ray);
        going_.push_back(static_cast<std::uint32_t>(i));
    }
    const std::span<const double> passed = shadows_.trace();
    for (std::size_t i = 0; i < passed.size(); ++i)
        ways_[going_[i]].rays.add(passed[i]);
    shadowRays_ += passed.size();
    return !passed.empty();
}

}  // namespace tavora::studio
