#include "studio/render/sample_bundle.h"

#include <algorithm>

#include "studio/scene/lighting/light_sample.h"

namespace tavora::studio {
namespace {

constexpr std::size_t kRoom = 512;

bool havePlaces(const LightSet& rig) {
    return std::any_of(rig.lights.begin(), rig.lights.end(), [](const ResolvedLight& lit) {
        return lit.light->kind != LightKind::Directional;
    });
}

/// Rays next to each other meet so many facets in turn.
constexpr std::size_t kLookBack = 10;

}  // namespace

SampleBundle::SampleBundle(const RayScene& scene, const LightSet& lights)
    : scene_(&scene),
      rig_(&lights),
      lights_(lights.lights.size()),
      viewing_(scene, kRoom),
      shadows_(scene, kRoom),
      hits_(kRoom),
      met_(kRoom),
      shares_(std::max<std::size_t>(kRoom * lights_, 1)),
      ways_(havePlaces(lights) ? kRoom * lights_ : 0),
      starts_(kRoom),
      going_(kRoom) {
    facets_.reserve(kRoom);
}

const MetSurface* SampleBundle::met(std::size_t ray) const {
    return met_[ray].hit.isNone() ? nullptr : &met_[ray];
}

void SampleBundle::trace(std::span<const Ray> rays, std::span<const KnownShadows* const> known,
                         const SampleShader& shader) {
    findSurfaces(rays);
    findStations(known.first(rays.size()), shader);
    std::fill_n(shares_.begin(), rays.size() * lights_, -1.0);
    if (!ways_.empty()) std::fill_n(ways_.begin(), rays.size() * lights_, LightWay{});
    for (std::size_t light = 0; light < lights_; ++light) {
        const ResolvedLight& lit = rig_->lights[light];
        if (!lit.points.empty()) {
            goToPoints(light);
        } else if (lit.light->kind == LightKind::Directional) {
            goToSky(light);
        } else {
            goToMiddle(light);
        }
    }
}

void SampleBundle::findSurfaces(std::span<const Ray> rays) {
    viewing_.firstHits(rays, hits_);
    viewingRays_ += rays.size();
    facets_.clear();
    for (std::size_t i = 0; i < rays.size(); ++i) {
        const std::size_t before = facets_.size();
        Hit& hit = met_[i].hit;
        hit = hits_[i];
        while (!hit.isNone() && !meet(*scene_, facetFor(rays[i], hit), rays[i], met_[i])) {
            facets_.resize(before);
            ++viewingRays_;
            scene_->nextHit(rays[i], hit, hit);
        }
    }
}

/// That of a ray shortly before, if it is the same.
const Facet& SampleBundle::facetFor(const Ray& ray, const Hit& hit) {
    std::size_t looks = kLookBack;
    for (auto before = facets_.rbegin(); before != facets_.rend() && looks-- > 0; ++before) {
        if (!isSameFacet(*before, ray, hit)) continue;
        if (before->eye == ray.origin) return *before;
        Facet& facet = facets_.emplace_back(*before);
        setEye(ray.origin, facet);
        return facet;
    }
    return facets_.emplace_back(facetAt(*scene_, ray, hit));
}

void SampleBundle::findStations(std::span<const KnownShadows* const> known,
                                const SampleShader& shader) {
    stations_.clear();
    starts_.clear();
    for (std::size_t i = 0; i < known.size(); ++i) {
        const MetSurface* surface = met(i);
        if (surface == nullptr || !shader.takesLight(*surface)) continue;
        const SurfacePoint& point = surface->point;
        Station& station = stations_.emplace_back();
        starts_.add(shadowOrigin(point));
        station.viewing = static_cast<std::uint32_t>(i);
        station.point = &point;
        station.asked = shader.askedLights(point.surfaceIndex());
        station.known = known[i] != nullptr
                            ? known[i]->at(surface->hit.mesh, static_cast<float>(point.distance))
                            : nullptr;
    }
}

/// One ray from each station that faces a directional light without a size.
void SampleBundle::goToSky(std::size_t light) {
    std::size_t count = 0;
    const Imath::V3d toLight = -rig_->lights[light].light->direction;
    for (std::size_t i = 0; i < stations_.size(); ++i) {
        const Station& station = stations_[i];
        const double known = knownShare(station, light);
        if (known < 0 && station.asked[light] == 0) continue;
        if (isBehind(*station.point, -toLight)) {
            share(station.viewing, light) = 0;
        } else if (!(toLight.dot(station.point->normal) > 0)) {
            continue;  // not shaded by it, most likely
        } else if (known >= 0) {
            share(station.viewing, light) = known;
        } else {
            going_[count++] = static_cast<std::uint32_t>(i);
        }
    }
    settle(light, shadows_.traceToSky(starts_, {going_.data(), count}, toLight));
}

/// One ray from each station that faces a light without a size which has a place.
void SampleBundle::goToMiddle(std::size_t light) {
    shadows_.clear();
    LitPlace place;
    for (const Station& station : stations_) {
        if (!isToSettle(station, light, place)) continue;
        Ray ray = rayFrom(station);
        if (!turnToMiddle(place, ray)) continue;
        going_[shadows_.count()] = static_cast<std::uint32_t>(&station - stations_.data());
        shadows_.add(ray);
    }
    settle(light, shadows_.trace());
}

/// Whether shadow rays have to tell what of the light reaches the station, where
/// it is asked for; says it, where that is known without.
bool SampleBundle::isToSettle(const Station& station, std::size_t light, LitPlace& place) {
    const double known = knownShare(station, light);
    if (known < 0 && station.asked[light] == 0) return false;
    if (!isReached(station, light, place)) return false;
    if (known >= 0) share(station.viewing, light) = known;
    return known < 0;
}

/// Whether the light, shadows aside, shines on the side that is seen.
bool SampleBundle::isReached(const Station& station, std::size_t light, LitPlace& place) {
    LightWay way;
    place.position = station.point->position;
    const auto sample = sampleLight(*rig_, rig_->lights[light], place.position);
    way.distance = -1;
    if (sample) way = {sample->distance, sample->direction, sample->color};
    if (!ways_.empty()) ways_[station.viewing * lights_ + light] = way;
    place.distance = way.distance;
    place.direction = way.direction;
    place.facing = &station.point->smoothNormal;
    return place.distance >= 0 && -place.direction.dot(station.point->normal) > 0 &&
           !isBehind(*station.point, place.direction);
}

/// `passed` along the ray to the light from each station that goes.
void SampleBundle::settle(std::size_t light, std::span<const double> passed) {
    shadowRays_ += passed.size();
    for (std::size_t i = 0; i < passed.size(); ++i)
        share(stations_[going_[i]].viewing, light) = passed[i];
}

void SampleBundle::goToPoints(std::size_t light) {
    softWays_.clear();
    const ResolvedLight& lit = rig_->lights[light];
    SoftWay way;
    LitPlace place;
    for (const Station& station : stations_) {
        if (!isToSettle(station, light, place)) continue;
        way.viewing = station.viewing;
        if (way.rays.aim(rayFrom(station), lit, place)) softWays_.push_back(way);
    }
    while (stepToPoints())
        ;
    for (const SoftWay& gone : softWays_)
        share(gone.viewing, light) = gone.rays.share();
}

/// One ray on each way that has one left; false when none has. Neighbours go to
/// the same place in the light.
bool SampleBundle::stepToPoints() {
    shadows_.clear();
    Ray ray;
    for (std::size_t i = 0; i < softWays_.size(); ++i) {
        if (!softWays_[i].rays.next(ray)) continue;
        going_[shadows_.count()] = static_cast<std::uint32_t>(i);
        shadows_.add(ray);
    }
    const std::span<const double> passed = shadows_.trace();
    shadowRays_ += passed.size();
    for (std::size_t i = 0; i < passed.size(); ++i)
        softWays_[going_[i]].rays.add(passed[i]);
    return !passed.empty();
}

}  // namespace tavora::studio
