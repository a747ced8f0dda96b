#include "studio/render/sample_shader.h"

#include <cmath>

#include "host/handler.h"
#include "studio/render/light_arrivals.h"
#include "studio/render/normal_map.h"
#include "studio/render/rounding_margin.h"
#include "studio/render/scattering.h"
#include "studio/render/surface_point.h"
#include "studio/services/service_binding.h"

namespace tavora::studio {
namespace {

/// The shader that works on this thread: callbacks of records carry no data.
thread_local SampleShader* working = nullptr;

Imath::V3d vector(const double v[3]) {
    return {v[0], v[1], v[2]};
}

void copyTo(double to[3], const Imath::V3d& from) {
    to[0] = from.x;
    to[1] = from.y;
    to[2] = from.z;
}

int answer(const LightArrival& arrival, double direction[3], double color[3]) {
    if (!arrival.lit) return 0;
    copyTo(direction, arrival.direction);
    copyTo(color, arrival.color);
    return 1;
}

/// Apart, as is the next, so that the usual answer costs no room for them.
[[gnu::noinline]] int answerWorkedOut(LightArrivals& lights, std::size_t light, double direction[3],
                                      double color[3]) {
    return answer(lights.workedOut(light), direction, color);
}

[[gnu::noinline]] int answerElsewhere(LightArrivals& lights, std::size_t light,
                                      const double position[3], double direction[3],
                                      double color[3]) {
    return answer(lights.elsewhere(light, vector(position)), direction, color);
}

/// The last ray that a sample's shader traced. Shaders may ask for the same
/// one again and again, and each answer may cost as many inside.
struct Traced {
    bool valid = false;
    Viewpoint from;
    double distance = -1;
    HostSample hit{};
};

/// Directions that differ by rounding only.
bool isSameDirection(const Imath::V3d& a, const Imath::V3d& b) {
    return a.dot(b) > 1 - 1e-10;
}

}  // namespace

/// One sample at work, and what is kept at hand for its callbacks.
struct SampleShader::Level {
    Level(const RayScene& scene, const LightSet& rig) : lights(scene, rig) {}

    const Ray* ray = nullptr;                  ///< that is followed
    Ray traced;                                ///< that a shader sent, if so
    bool onPath = false;                       ///< `ray` is the camera's, and is kept
    KeptPath::Place place = KeptPath::kStart;  ///< of its hit, if so
    Facet facet;                               ///< of what is found
    MetSurface found;
    const MetSurface* met = &found;  ///< what is shaded
    LightArrivals lights;
    HostSample record{};  ///< of camera samples; traced ones belong to their caller
    FacetKey recorded;    ///< the facet that `record` is filled for
    bool mayTrace = false;
    Traced lastTraced;
};

namespace {

OwnColor ownColorAt(const RayScene& scene, const SurfacePoint& point) {
    return ownColor(scene.index(), scene.traits(point.surfaceIndex()), point.meshPoint());
}

}  // namespace

bool meet(const RayScene& scene, const Facet& facet, const Ray& ray, MetSurface& met) {
    setSurfacePoint(facet, ray, met.point);
    met.own = facet.even != nullptr ? *facet.even : ownColorAt(scene, met.point);
    if (!(met.own.alpha > 0)) return false;
    if (facet.isMapped) bendNormal(scene.index(), met.point);
    return true;
}

SampleShader::SampleShader(const RayScene& scene, const LightSet& lights,
                           const LaneShaders& shaders)
    : scene_(&scene),
      lights_(&lights),
      shaders_(&shaders),
      asked_(scene.index().scene().surfaces.size() * lights.lights.size()) {
    for (std::size_t depth = 0; depth <= kDeepestTrace; ++depth)
        levels_.push_back(std::make_unique<Level>(scene, lights));
    level_ = levels_.front().get();
}

SampleShader::~SampleShader() = default;

std::uint64_t SampleShader::shadowRays() const {
    std::uint64_t sum = 0;
    for (const auto& level : levels_)
        sum += level->lights.shadowRays();
    return sum;
}

void SampleShader::follow(const KeptPath& path) {
    path_ = path;
    levels_.front()->onPath = true;
    levels_.front()->place = KeptPath::kStart;
}

bool SampleShader::shadeNext(const Ray& ray, const Hit& after, Hit& hit, Appearance& appearance) {
    working = this;
    Level& level = *levels_.front();
    level.ray = &ray;
    if (!findVisible(level, after)) return false;
    hit = level.found.hit;
    appearance =
        shade(level, {ray.origin, ray.direction, level.found.point.distance}, {}, level.record);
    return true;
}

Appearance SampleShader::shadeMet(const Ray& ray, const MetSurface& met,
                                  const KnownLights& lights) {
    working = this;
    Level& level = *levels_.front();
    level.ray = &ray;
    level.met = &met;
    return shade(level, {ray.origin, ray.direction, met.point.distance}, lights, level.record);
}

LightsMet SampleShader::lightsMet() const {
    return levels_.front()->lights.met();
}

const SurfacePoint& SampleShader::point() const {
    return levels_.front()->met->point;
}

bool SampleShader::nextHit(Level& level, const Hit& after) {
    Hit& hit = level.found.hit;
    if (level.onPath) {
        const KeptPath::Step step = path_.next(level.place, hit);
        if (step != KeptPath::Step::Unknown) return step == KeptPath::Step::Hit;
    }
    ++viewingRays_;
    const bool hits = scene_->nextHit(*level.ray, after, hit);
    if (level.onPath) path_.keep(level.place, hits ? &hit : nullptr);
    return hits;
}

/// Finds the next surface after `after` that is not wholly clear.
bool SampleShader::findVisible(Level& level, Hit after) {
    level.met = &level.found;
    while (nextHit(level, after)) {
        setFacet(*scene_, *level.ray, level.found.hit, level.facet);
        setSurfacePoint(level.facet, *level.ray, level.found.point);
        level.found.own = findOwnColor(level);
        if (level.found.own.alpha > 0) {
            if (level.facet.isMapped) bendNormal(scene_->index(), level.found.point);
            return true;
        }
        after = level.found.hit;
    }
    return false;
}

OwnColor SampleShader::findOwnColor(const Level& level) {
    const SurfacePoint& point = level.found.point;
    if (level.facet.even != nullptr) return *level.facet.even;
    if (!level.onPath) return ownColorAt(*scene_, point);
    if (const OwnColor* kept = path_.ownColor(level.place)) return *kept;
    OwnColor own = ownColorAt(*scene_, point);
    path_.keepOwnColor(level.place, own);
    return own;
}

Appearance SampleShader::shade(Level& level, const Viewpoint& from, const KnownLights& lights,
                               HostSample& record) {
    const SurfacePoint& point = level.met->point;
    const int surface = point.surfaceIndex();
    shaded_.add(static_cast<std::size_t>(surface));
    const SurfaceTraits& traits = scene_->traits(surface);
    const ActiveShader active = shaders_->of(surface);
    const OwnColor& own = level.met->own;
    SampleValues values{own.color, own.luminosity, own.diffuse,
                        active.shader != nullptr ? traits.specular : 0, 1 - own.alpha};
    level.lights.start(point, asked_.data() + firstAsked(surface), lights);
    if (level.onPath) level.lights.keep(path_, level.place);
    fill(level, from, values, record);
    if (active.shader != nullptr) evaluate(level, active, record, values);

    const Imath::V3d shown =
        showsAsItIs(values)
            ? values.color * values.luminosity
            : shownInLight(values, traits.exponent, point, -from.direction, *lights_, level.lights);
    const bool sound = std::isfinite(shown.x + shown.y + shown.z);
    return {sound ? shown : Imath::V3d(0), values.transparency};
}

/// A shader leaves what its record says of the place alone, so that it need not
/// be said anew for the next sample on the facet.
void SampleShader::fill(Level& level, const Viewpoint& from, const SampleValues& values,
                        HostSample& record) const {
    const Facet& facet = *level.met->point.facet;
    if (&record != &level.record || level.recorded != facet.key) {
        fillFacet(*scene_, facet, record);
        if (&record == &level.record) level.recorded = facet.key;
        record.illuminate = illuminate;
        record.traceAndShade = traceAndShade;
    }
    fillPoint(level.met->point, from, record);
    fillValues(values, record);
}

void SampleShader::evaluate(Level& level, const ActiveShader& active, HostSample& record,
                            SampleValues& values) {
    // What is kept serves later edits, which may ask for other lights.
    if (level.onPath) level.lights.prepare();
    level.mayTrace = (active.flags & HOST_SHADER_RAYTRACE) != 0;
    level.lastTraced.valid = false;
    ++evaluations_;
    active.shader->evaluate(record);
    takeBack(active.flags, record, values);
    // Shaders see what came of the samples that they traced.
    if (&record != &level.record) fillValues(values, record);
}

int SampleShader::illuminate(HostItemId light, const double position[3], double direction[3],
                             double color[3]) {
    Level& level = *working->level_;
    const std::ptrdiff_t index = lightIndex(*working->lights_, light);
    if (index < 0) return 0;
    const auto number = static_cast<std::size_t>(index);
    const Imath::V3d& here = level.met->point.position;
    if (position[0] != here.x || position[1] != here.y || position[2] != here.z) {
        return answerElsewhere(level.lights, number, position, direction, color);
    }
    const LightArrival* arrival = level.lights.atOnce(number);
    if (arrival == nullptr) return answerWorkedOut(level.lights, number, direction, color);
    return answer(*arrival, direction, color);
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
    Traced& traced = outer.lastTraced;
    const bool known = traced.valid && traced.from.position == from.position &&
                       traced.from.direction == from.direction;
    if (!known) {
        traced.from = from;
        level_ = levels_[++depth_].get();
        traced.distance = traceAnew(outer, from, traced.hit);
        level_ = levels_[--depth_].get();
        traced.valid = true;
    }
    if (traced.distance >= 0) hit = traced.hit;
    if (&hit == &outer.record) outer.recorded = {};
    return traced.distance;
}

double SampleShader::traceAnew(const Level& outer, const Viewpoint& from, HostSample& hit) {
    Level& level = *level_;
    Hit after;
    if (from.position == outer.met->point.position &&
        isSameDirection(from.direction, outer.ray->direction)) {
        // The viewing ray goes on: what it passed is known exactly.
        level.ray = outer.ray;
        level.onPath = outer.onPath;
        level.place = outer.place;
        after = outer.met->hit;
    } else {
        level.traced = Ray{};
        level.traced.origin = from.position;
        level.traced.direction = from.direction;
        level.traced.nearest = 4 * roundingMargin(magnitudeOf(from.position));
        level.traced.spot = outer.met->point.spotSize;
        level.traced.spread = outer.ray->spread;
        level.ray = &level.traced;
        level.onPath = false;
    }
    if (!findVisible(level, after)) return -1;
    const double distance = (level.met->point.position - from.position).length();
    copyTo(hit.color, shade(level, {from.position, from.direction, distance}, {}, hit).color);
    return distance;
}

}  // namespace tavora::studio
