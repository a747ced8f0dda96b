#include "studio/render/shade/sample_shader.h"

#include <bit>
#include <cmath>

#include "host/handler.h"
#include "studio/render/shade/reflection.h"
#include "studio/render/trace/rounding_margin.h"
#include "studio/scene/vectors.h"
#include "studio/services/service_binding.h"

namespace tavora::studio {
namespace {

/// The shader that works on this thread.
thread_local SampleShader* working = nullptr;

Imath::V3d vector(const double v[3]) {
    return {v[0], v[1], v[2]};
}

/// The last ray that a sample's shader traced. Shaders may ask for the same one again and
/// again, and each answer may cost as many inside.
struct TracedRay {
    bool isValid = false;
    Viewpoint from;
    double distance = -1;
    HostSample hit{};
};

/// Directions that differ by rounding only.
bool isSameDirection(const Imath::V3d& a, const Imath::V3d& b) {
    return a.dot(b) > 1 - 1e-10;
}

}  // namespace

HitBatch::HitBatch(const RayScene& scene, const LightSet& lightSet, std::size_t capacity)
    : points(capacity), lights(scene, lightSet, capacity) {
    hits.reserve(capacity);
    colors.reserve(capacity);
    priors.reserve(capacity);
}

void HitBatch::clear() {
    points.clear();
    hits.clear();
    colors.clear();
    priors.clear();
}

SurfacePoint& HitBatch::add(const RayScene& scene, const Facet& facet, const Ray& ray,
                            const Hit& hit, const PriorVisibility& prior) {
    SurfacePoint& point = points.add(facet, ray);
    hits.push_back(hit);
    colors.push_back(lookUpSurface(scene, point, prior.cached));
    priors.push_back(prior);
    return point;
}

/// One depth of nested samples: a batch, and what is at hand for the callbacks of the sample
/// that is shaded.
struct SampleShader::Level {
    Level(const RayScene& scene, const LightSet& lights, std::size_t capacity)
        : batch(scene, lights, capacity) {}

    /// The sample asked for the light.
    void note(std::size_t light) {
        if (light < LightBits::kMost) seen = static_cast<std::uint16_t>(seen | 1U << light);
    }
    /// That hit the point which is shaded.
    Ray rayToPoint() const { return cameraRays != nullptr ? cameraRays->ray(rayNumber) : ray; }

    HitBatch batch;
    Facet facet;                                 ///< of a nested hit
    Ray ray;                                     ///< to a nested hit
    const CameraRayBatch* cameraRays = nullptr;  ///< of camera hits
    std::size_t rayNumber = 0;                   ///< of the point that is shaded, among those
    std::size_t point = 0;                       ///< that is shaded
    std::uint16_t seen = 0;  ///< lights that it asked for, a bit for each of the first
    HostSample record{};     ///< of camera samples; traced ones belong to their caller
    FacetKey recorded;       ///< the facet that `record` is filled for
    bool mayTrace = false;
    TracedRay lastTraced;
};

SampleShader::SampleShader(const RayScene& scene, const LightSet& lights,
                           const WorkerShaders& shaders, std::size_t capacity)
    : scene_(&scene),
      lights_(&lights),
      shaders_(&shaders),
      nested_(scene),
      asked_(scene.index().scene().surfaces.size() * lights.lights.size()) {
    for (std::size_t depth = 0; depth <= kDeepestTrace; ++depth)
        levels_.push_back(std::make_unique<Level>(scene, lights, depth == 0 ? capacity : 1));
    level_ = levels_.front().get();
    asking_.reserve(capacity);
}

SampleShader::~SampleShader() = default;

HitBatch& SampleShader::batch() {
    return levels_.front()->batch;
}

std::uint64_t SampleShader::shadowRays() const {
    std::uint64_t sum = 0;
    for (const auto& level : levels_)
        sum += level->batch.lights.shadowRays();
    return sum;
}

void SampleShader::light() {
    light(*levels_.front());
}

void SampleShader::light(Level& level) {
    HitBatch& batch = level.batch;
    batch.lights.begin(batch.points, batch.priors);
    // What is cached serves later edits, which may ask for other lights.
    const bool areAllAsked = batch.lights.isCached();
    // A nested sample works its lights out one by one, as its shader asks for them.
    if (&level != levels_.front().get() && !areAllAsked) return;
    for (std::size_t light = 0; light < lights_->lights.size(); ++light) {
        asking_.clear();
        for (const PointRange& range : batch.points.meshes()) {
            const int surface = range.mesh->surfaceIndex;
            const bool takesLight =
                !range.mesh->surface->unlit || shaders_->of(surface).shader != nullptr;
            if (takesLight && (areAllAsked || askedLights(surface)[light] != 0))
                asking_.push_back(range);
        }
        if (!asking_.empty()) batch.lights.find(light, asking_);
    }
}

Appearance SampleShader::shade(std::size_t point, const CameraRayBatch& rays, std::size_t ray) {
    working = this;
    Level& level = *levels_.front();
    level.cameraRays = &rays;
    level.rayNumber = ray;
    const double distance = level.batch.points[point].distance;
    return shade(level, point, {rays.origins[ray], rays.directions[ray], distance}, level.record);
}

LightBits SampleShader::seenLights() const {
    const Level& level = *levels_.front();
    LightBits bits;
    for (unsigned left = level.seen; left != 0; left &= left - 1) {
        const auto light = static_cast<std::size_t>(std::countr_zero(left));
        bits.add(light, level.batch.lights.visibility(light, level.point));
    }
    return bits;
}

Appearance SampleShader::shade(Level& level, std::size_t number, const Viewpoint& from,
                               HostSample& record) {
    level.point = number;
    level.seen = 0;
    const SurfacePoint& point = level.batch.points[number];
    const int surface = point.surfaceIndex();
    shaded_.add(static_cast<std::size_t>(surface));
    const Material& material = scene_->material(surface);
    const ActiveShader active = shaders_->of(surface);
    const BaseColor& base = level.batch.colors[number];
    SampleValues values{base.color, base.luminosity, base.diffuse,
                        active.shader != nullptr ? material.specular : 0, 1 - base.alpha};
    if (active.shader != nullptr) {
        fill(level, from, values, record);
        evaluate(level, active, record, values);
    } else if (&record != &level.record) {
        fill(level, from, values, record);
    }
    Imath::V3d shown = values.color * values.luminosity;
    if (needsLight(values)) {
        const auto ask = [&](std::size_t light, double direction[3], double color[3]) {
            askedLights(surface)[light] = 1;
            level.note(light);
            return level.batch.lights.illuminate(light, number, direction, color);
        };
        const auto cosine = [&](std::size_t light) {
            return level.batch.lights.cosine(light, number);
        };
        shown = reflect(values, material.exponent, point.normal, -from.direction, *lights_, cosine,
                        ask);
    }
    const bool isFinite = std::isfinite(shown.x + shown.y + shown.z);
    return {isFinite ? shown : Imath::V3d(0), values.transparency};
}

/// A shader leaves what its record says of the position alone, so that it need not be said
/// anew for the next sample on the facet.
void SampleShader::fill(Level& level, const Viewpoint& from, const SampleValues& values,
                        HostSample& record) const {
    const SurfacePoint& point = level.batch.points[level.point];
    const Facet& facet = *point.facet;
    if (&record != &level.record || level.recorded != facet.key) {
        fillFacet(*scene_, facet, record);
        if (&record == &level.record) level.recorded = facet.key;
        record.illuminate = illuminate;
        record.traceAndShade = traceAndShade;
    }
    fillPoint(point, from, record);
    fillValues(values, record);
}

void SampleShader::evaluate(Level& level, const ActiveShader& active, HostSample& record,
                            SampleValues& values) {
    level.mayTrace = (active.flags & HOST_SHADER_RAYTRACE) != 0;
    level.lastTraced.isValid = false;
    ++evaluations_;
    active.shader->evaluate(record);
    takeBack(active.flags, record, values);
    // Shaders see what came of the samples that they traced.
    if (&record != &level.record) fillValues(values, record);
}

int SampleShader::illuminate(HostItemId light, const double position[3], double direction[3],
                             double color[3]) {
    Level& level = *working->level_;
    const auto index = lightIndex(*working->lights_, light);
    if (!index) return 0;
    const SurfacePoint& point = level.batch.points[level.point];
    const Imath::V3d& here = point.position;
    LightBatch& lights = level.batch.lights;
    if (position[0] != here.x || position[1] != here.y || position[2] != here.z)
        return lights.illuminateElsewhere(*index, level.point, vector(position), direction, color);
    level.note(*index);
    working->askedLights(point.surfaceIndex())[*index] = 1;
    return lights.illuminate(*index, level.point, direction, color);
}

double SampleShader::traceAndShade(const double position[3], const double direction[3],
                                   HostSample* hit) {
    const Imath::V3d along = vector(direction);
    const double length = along.length();
    if (!(length > 0 && std::isfinite(length))) return -1;
    return working->trace({vector(position), along / length}, *hit);
}

double SampleShader::trace(const Viewpoint& from, HostSample& hit) {
    Level& outer = *level_;
    if (!outer.mayTrace || depth_ >= kDeepestTrace) return -1;
    TracedRay& traced = outer.lastTraced;
    const bool isKnown = traced.isValid && traced.from.position == from.position &&
                         traced.from.direction == from.direction;
    if (!isKnown) {
        traced.from = from;
        level_ = levels_[++depth_].get();
        traced.distance = traceAnew(outer, from, traced.hit);
        level_ = levels_[--depth_].get();
        traced.isValid = true;
    }
    if (traced.distance >= 0) hit = traced.hit;
    if (&hit == &outer.record) outer.recorded = {};
    return traced.distance;
}

double SampleShader::traceAnew(const Level& outer, const Viewpoint& from, HostSample& hit) {
    Level& level = *level_;
    const SurfacePoint& point = outer.batch.points[outer.point];
    const Ray outerRay = outer.rayToPoint();
    Hit after;
    PriorVisibility prior;
    if (from.position == point.position && isSameDirection(from.direction, outerRay.direction)) {
        // The camera ray goes on: what it passed is known exactly.
        level.ray = outerRay;
        after = outer.batch.hits[outer.point];
        prior.cached = outer.batch.priors[outer.point].cached;
    } else {
        level.ray = Ray{};
        level.ray.origin = from.position;
        level.ray.direction = from.direction;
        level.ray.tMin = 4 * roundingMargin(magnitudeOf(from.position));
        level.ray.footprint = point.footprint;
        level.ray.coneSpread = outerRay.coneSpread;
    }
    const Hit next = nested_.nextHit(level.ray, after, prior.cached);
    const Hit hitSurface = nested_.visibleHit(level.ray, next, prior.cached);
    if (hitSurface.isNone()) return -1;
    level.facet = facetAt(*scene_, level.ray, hitSurface);
    level.batch.clear();
    const SurfacePoint& traced =
        level.batch.add(*scene_, level.facet, level.ray, hitSurface, prior);
    light(level);
    const double distance = (traced.position - from.position).length();
    writeVector(shade(level, 0, {from.position, from.direction, distance}, hit).color, hit.color);
    return distance;
}

}  // namespace tavora::studio
