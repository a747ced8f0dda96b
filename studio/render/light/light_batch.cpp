#include "studio/render/light/light_batch.h"

#include <algorithm>
#include <cmath>

#include "studio/render/trace/rounding_margin.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

/// Vectors by point, for loops: what they write is none of these.
struct Vectors {
    const double* __restrict x;
    const double* __restrict y;
    const double* __restrict z;
};

Vectors vectorsOf(const VectorArray& v, std::size_t first) {
    return {v.x.data() + first, v.y.data() + first, v.z.data() + first};
}

/// PunctualSample by point, to be written by loops.
struct PunctualSamples {
    double* __restrict x;
    double* __restrict y;
    double* __restrict z;
    double* __restrict distances;
    double* __restrict levels;
};

/// samplePunctual() for many positions.
template <bool isSpot, bool hasFalloff>
inline void sampleAll(const PunctualLight& shared, const Vectors& at, std::size_t count,
                      const PunctualSamples& samples) {
    const PunctualLight light = shared;  // a copy that no store in the loop can change
    TAVORA_NO_ALIASES
    for (std::size_t i = 0; i < count; ++i) {
        const PunctualSample sample =
            samplePunctual<isSpot, hasFalloff>(light, at.x[i], at.y[i], at.z[i]);
        samples.x[i] = sample.x;
        samples.y[i] = sample.y;
        samples.z[i] = sample.z;
        samples.distances[i] = sample.distance;
        samples.levels[i] = sample.level;
    }
}

TAVORA_VECTOR_LOOPS
void sampleAll(bool isSpot, bool hasFalloff, const PunctualLight& light, const Vectors& at,
               std::size_t count, const PunctualSamples& samples) {
    if (isSpot && hasFalloff) {
        sampleAll<true, true>(light, at, count, samples);
    } else if (isSpot) {
        sampleAll<true, false>(light, at, count, samples);
    } else if (hasFalloff) {
        sampleAll<false, true>(light, at, count, samples);
    } else {
        sampleAll<false, false>(light, at, count, samples);
    }
}

/// How a point faces a light: its shading normal turns away, or towards it, or no light gets
/// to its side at all. Numbers, because loops that write them vectorise.
constexpr std::int32_t kAway = 0;
constexpr std::int32_t kTowards = 1;
constexpr std::int32_t kDark = 2;

/// How a point faces light that travels along (x, y, z).
inline std::int32_t facingOf(double x, double y, double z, const Vectors& normals,
                             const Vectors& smooth, const Vectors& polygon, std::size_t i) {
    const double cosine = -(x * normals.x[i] + y * normals.y[i] + z * normals.z[i]);
    const double alongSmooth = x * smooth.x[i] + y * smooth.y[i] + z * smooth.z[i];
    const double alongPolygon = x * polygon.x[i] + y * polygon.y[i] + z * polygon.z[i];
    const bool isBehindBoth = (alongSmooth >= 0) & (alongPolygon >= 0);
    const std::int32_t seen = cosine > 0 ? kTowards : kAway;
    return isBehindBoth ? kDark : seen;
}

TAVORA_VECTOR_LOOPS
void faceDirectional(const V3d& direction, const Vectors& normals, const Vectors& smooth,
                     const Vectors& polygon, std::size_t count, std::int32_t* __restrict facing) {
    const double x = direction.x;
    const double y = direction.y;
    const double z = direction.z;
    for (std::size_t i = 0; i < count; ++i)
        facing[i] = facingOf(x, y, z, normals, smooth, polygon, i);
}

TAVORA_VECTOR_LOOPS
void facePunctual(const Vectors& directions, const double* __restrict levels,
                  const Vectors& normals, const Vectors& smooth, const Vectors& polygon,
                  std::size_t count, std::int32_t* __restrict facing) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t lit = facingOf(directions.x[i], directions.y[i], directions.z[i],
                                          normals, smooth, polygon, i);
        facing[i] = levels[i] > 0 ? lit : kDark;
    }
}

/// Rays from `origins` to the light, `distances` along `directions` before `positions`, as
/// ShadowRays aims them at a light's middle.
TAVORA_VECTOR_LOOPS
void aimAtLight(const Vectors& positions, const Vectors& directions,
                const double* __restrict distances, const Vectors& origins, std::size_t count,
                float* __restrict x, float* __restrict y, float* __restrict z,
                double* __restrict lengths, float* __restrict ends) {
    for (std::size_t i = 0; i < count; ++i) {
        const double wx = positions.x[i] - directions.x[i] * distances[i] - origins.x[i];
        const double wy = positions.y[i] - directions.y[i] * distances[i] - origins.y[i];
        const double wz = positions.z[i] - directions.z[i] * distances[i] - origins.z[i];
        const double length = std::sqrt(wx * wx + wy * wy + wz * wz);
        x[i] = embreeComponent(wx / length);
        y[i] = embreeComponent(wy / length);
        z[i] = embreeComponent(wz / length);
        lengths[i] = length;
        ends[i] = surelyBeyond(static_cast<float>(length * kBeforeLight));
    }
}

/// Radius of a ball around a light outside of which nothing can lie so near the end of a
/// shadow ray that Embree's rounding matters, for rays from anywhere in the scene.
double endRadius(const Scene& scene, const ResolvedLight& light) {
    constexpr double kDoubt = 1e-5;
    const V3d& position = light.light->position;
    double radius = 0;
    double reach = magnitudeOf(position);
    for (const V3d& point : light.points)
        radius = std::max(radius, (point - position).length());
    if (!scene.bounds.isEmpty())
        reach = std::max({reach, magnitudeOf(scene.bounds.min), magnitudeOf(scene.bounds.max)});
    return radius + 4 * kDoubt * (reach + radius);
}

bool mayEndOnSurface(const RayScene& scene, const ResolvedLight& light) {
    if (light.light->kind == LightKind::Directional) return false;
    const double radius = endRadius(scene.index().scene(), light);
    return !std::isfinite(radius) || scene.mayTouch(light.light->position, radius);
}

}  // namespace

LightBatch::LightBatch(const RayScene& scene, const LightSet& lights, std::size_t capacity)
    : scene_(&scene),
      lights_(&lights),
      capacity_(capacity),
      arrays_(lights.lights.size()),
      occlusion_(scene, capacity),
      facing_(capacity),
      rayX_(capacity),
      rayY_(capacity),
      rayZ_(capacity),
      rayEnds_(capacity),
      rayLengths_(capacity) {
    for (const ResolvedLight& light : lights.lights)
        mayEndOnSurface_.push_back(capacity == 1 || mayEndOnSurface(scene, light) ? 1 : 0);
    rayPoints_.reserve(capacity);
}

void LightBatch::begin(ShadingPoints& points, std::span<const PriorVisibility> priors) {
    points_ = &points;
    priors_ = priors;
    haveCaches_ = haveNeighbours_ = false;
    for (const PriorVisibility& prior : priors) {
        haveCaches_ |= prior.cached.isCached();
        haveNeighbours_ |= prior.neighbours != nullptr;
    }
    for (LightArrays& light : arrays_)
        light.isBegun = false;
}

/// The arrays of a light; at first with what is cached.
LightBatch::LightArrays& LightBatch::begun(std::size_t light) {
    LightArrays& arrays = arrays_[light];
    if (arrays.isBegun) return arrays;
    arrays.isBegun = true;
    if (arrays.visibilities.empty()) {
        arrays.visibilities.resize(capacity_);
        if (!isDirectional(light)) {
            arrays.isSampled.resize(capacity_);
            for (auto* numbers :
                 {&arrays.x, &arrays.y, &arrays.z, &arrays.distances, &arrays.levels})
                numbers->resize(capacity_);
        }
    }
    const std::size_t count = points_->size();
    std::fill_n(arrays.visibilities.begin(), count, Visibility());
    if (!arrays.isSampled.empty()) std::fill_n(arrays.isSampled.begin(), count, std::uint8_t{0});
    if (!haveCaches_) return arrays;
    for (std::size_t i = 0; i < count; ++i)
        arrays.visibilities[i] = priors_[i].cached.visibility(light);
    return arrays;
}

void LightBatch::sample(std::size_t light, const PointRange& range) {
    LightArrays& arrays = arrays_[light];
    const std::size_t first = range.first;
    const std::size_t count = range.last - range.first;
    const ResolvedLight& resolved = lights_->lights[light];
    const Vectors at = vectorsOf(points_->positions(), first);
    const PunctualSamples samples{&arrays.x[first], &arrays.y[first], &arrays.z[first],
                                  &arrays.distances[first], &arrays.levels[first]};
    sampleAll(resolved.light->kind == LightKind::Spot, lights_->falloff, PunctualLight(resolved),
              at, count, samples);
    std::fill_n(arrays.isSampled.begin() + range.first, count, std::uint8_t{1});
}

void LightBatch::sampleOne(std::size_t light, std::size_t point) {
    LightArrays& arrays = arrays_[light];
    if (arrays.isSampled[point] != 0) return;
    const ResolvedLight& resolved = lights_->lights[light];
    const PunctualSample sample =
        samplePunctual(resolved.light->kind == LightKind::Spot, lights_->falloff,
                       PunctualLight(resolved), (*points_)[point].position);
    arrays.x[point] = sample.x;
    arrays.y[point] = sample.y;
    arrays.z[point] = sample.z;
    arrays.distances[point] = sample.distance;
    arrays.levels[point] = sample.level;
    arrays.isSampled[point] = 1;
}

LightSample LightBatch::sampleOf(std::size_t light, std::size_t point) const {
    const ResolvedLight& resolved = lights_->lights[light];
    if (isDirectional(light))
        return {resolved.light->direction, resolved.color, std::numeric_limits<double>::infinity()};
    const LightArrays& arrays = arrays_[light];
    return {{arrays.x[point], arrays.y[point], arrays.z[point]},
            resolved.color * arrays.levels[point],
            arrays.distances[point]};
}

void LightBatch::findFacing(std::size_t light, const PointRange& range) {
    const std::size_t first = range.first;
    const std::size_t count = range.last - range.first;
    const Vectors normals = vectorsOf(points_->normals(), first);
    const Vectors smooth = vectorsOf(points_->smoothNormals(), first);
    const Vectors polygon = vectorsOf(points_->polygonNormals(), first);
    std::int32_t* facing = facing_.data() + first;
    if (isDirectional(light)) {
        faceDirectional(lights_->lights[light].light->direction, normals, smooth, polygon, count,
                        facing);
        return;
    }
    const LightArrays& arrays = arrays_[light];
    facePunctual({&arrays.x[first], &arrays.y[first], &arrays.z[first]}, &arrays.levels[first],
                 normals, smooth, polygon, count, facing);
}

void LightBatch::aimShadowRays(std::size_t light, const PointRange& range) {
    const LightArrays& arrays = arrays_[light];
    const std::size_t first = range.first;
    aimAtLight(vectorsOf(points_->positions(), first),
               {&arrays.x[first], &arrays.y[first], &arrays.z[first]}, &arrays.distances[first],
               vectorsOf(points_->shadowOrigins(), first), range.last - range.first, &rayX_[first],
               &rayY_[first], &rayZ_[first], &rayLengths_[first], &rayEnds_[first]);
}

void LightBatch::find(std::size_t light, std::span<const PointRange> ranges) {
    begun(light);
    points_->fillArrays();
    const bool isArea = !lights_->lights[light].points.empty();
    rayPoints_.clear();
    areaRays_.clear();
    areaPoints_.clear();
    for (const PointRange& range : ranges) {
        if (!isDirectional(light)) sample(light, range);
        findFacing(light, range);
        if (isArea) {
            addAreaRays(light, range);
        } else {
            if (!isDirectional(light)) aimShadowRays(light, range);
            addRays(light, range);
        }
    }
    if (isArea) {
        traceAreaRays(light);
    } else {
        traceRays(light);
    }
}

void LightBatch::set(std::size_t light, std::size_t point, Visibility visibility) {
    arrays_[light].visibilities[point] = visibility;
    if (haveCaches_) priors_[point].cached.keepVisibility(light, visibility);
}

/// Whether a ray has to tell how much of the light reaches a point of the range at work. Says
/// it where it is known without.
bool LightBatch::needsRay(std::size_t light, std::size_t point, bool isShadowed) {
    if (arrays_[light].visibilities[point].isKnown()) return false;
    if (facing_[point] == kDark) {
        set(light, point, Visibility(0));
        return false;
    }
    // A light that the shading normal does not face shades nothing, most likely.
    if (facing_[point] == kAway) return false;
    if (!isShadowed) {
        set(light, point, Visibility(1));
        return false;
    }
    if (!haveNeighbours_) return true;
    const LightBits* neighbours = priors_[point].neighbours;
    if (neighbours == nullptr) return true;
    const Visibility known = neighbours->visibility(light);
    if (known.isKnown()) set(light, point, known);
    return !known.isKnown();
}

void LightBatch::addRays(std::size_t light, const PointRange& range) {
    const bool shadowed = isShadowed(light, *range.mesh);
    const bool judgesEnds = mayEndOnSurface_[light] != 0;
    const bool hasEnd = !isDirectional(light);
    const bool needsStates = occlusion_.needsStates(judgesEnds);
    const RTCRayNp& origins = points_->shadowRays();
    RayBatch& batch = occlusion_.batch();
    for (std::size_t point = range.first; point < range.last; ++point) {
        if (!needsRay(light, point, shadowed)) continue;
        if (hasEnd && !(rayLengths_[point] > 0)) {
            set(light, point, Visibility(1));
            continue;
        }
        const std::size_t ray = rayPoints_.size();
        rayPoints_.push_back(static_cast<std::uint32_t>(point));
        if (hasEnd) {
            batch.setOrigin(ray,
                            {origins.org_x[point], origins.org_y[point], origins.org_z[point]});
            batch.setDirection(ray, {rayX_[point], rayY_[point], rayZ_[point]}, 0, rayEnds_[point]);
        }
        if (!needsStates) continue;
        OcclusionState state = occlusionState(shadowRayStart((*points_)[point]));
        if (hasEnd) state.limits.tMax = static_cast<float>(rayLengths_[point] * kBeforeLight);
        occlusion_.setState(ray, state);
    }
}

void LightBatch::traceRays(std::size_t light) {
    const std::size_t count = rayPoints_.size();
    const RTCRayNp* origins = nullptr;
    if (isDirectional(light)) {
        RayBatch& batch = occlusion_.batch();
        const RTCRayNp& all = points_->shadowRays();
        batch.setAllDirections(count, embreeDirection(-lights_->lights[light].light->direction));
        if (count == points_->size()) {
            origins = &all;
        } else {
            for (std::size_t i = 0; i < count; ++i) {
                const std::uint32_t point = rayPoints_[i];
                batch.setOrigin(i, {all.org_x[point], all.org_y[point], all.org_z[point]});
            }
        }
    }
    const std::span<const double> passed =
        occlusion_.trace(count, mayEndOnSurface_[light] != 0, origins);
    shadowRays_ += count;
    for (std::size_t i = 0; i < count; ++i)
        set(light, rayPoints_[i], Visibility(passed[i]));
}

void LightBatch::addAreaRays(std::size_t light, const PointRange& range) {
    const bool shadowed = isShadowed(light, *range.mesh);
    for (std::size_t point = range.first; point < range.last; ++point) {
        if (!needsRay(light, point, shadowed)) continue;
        ShadowRays rays;
        const SurfacePoint& from = (*points_)[point];
        if (rays.begin(shadowRayStart(from), lights_->lights[light], from.position,
                       sampleOf(light, point), &from.smoothNormal)) {
            areaRays_.push_back(rays);
            areaPoints_.push_back(static_cast<std::uint32_t>(point));
        } else {
            set(light, point, Visibility(1));
        }
    }
}

/// One ray of each point at a time: neighbours go to the same point of the light.
void LightBatch::traceAreaRays(std::size_t light) {
    const bool judgesEnds = mayEndOnSurface_[light] != 0;
    const bool needsStates = occlusion_.needsStates(judgesEnds);
    for (;;) {
        rayPoints_.clear();
        Ray ray;
        for (std::size_t i = 0; i < areaRays_.size(); ++i) {
            if (!areaRays_[i].next(ray)) continue;
            const std::size_t number = rayPoints_.size();
            rayPoints_.push_back(static_cast<std::uint32_t>(i));
            RayBatch& batch = occlusion_.batch();
            batch.setOrigin(number, Imath::V3f(ray.origin));
            batch.setDirection(number, embreeDirection(ray.direction), embreeTMin(ray),
                               embreeTMax(ray));
            if (needsStates) occlusion_.setState(number, occlusionState(ray));
        }
        if (rayPoints_.empty()) break;
        const std::span<const double> passed = occlusion_.trace(rayPoints_.size(), judgesEnds);
        shadowRays_ += passed.size();
        for (std::size_t i = 0; i < passed.size(); ++i)
            areaRays_[rayPoints_[i]].add(passed[i]);
    }
    for (std::size_t i = 0; i < areaRays_.size(); ++i)
        set(light, areaPoints_[i], Visibility(areaRays_[i].visibility()));
}

Visibility LightBatch::traceOne(std::size_t light, std::size_t point) {
    const SurfacePoint& from = (*points_)[point];
    const LightSample sample = sampleOf(light, point);
    if (!isDirectional(light) && !(arrays_[light].levels[point] > 0)) return Visibility(0);
    if (isBehind(from, sample.direction)) return Visibility(0);
    if (!isShadowed(light, from.source())) return Visibility(1);
    // As find() does, so that it does not matter which of them works the light out.
    const LightBits* neighbours = priors_[point].neighbours;
    if (neighbours != nullptr && -sample.direction.dot(from.normal) > 0) {
        const Visibility known = neighbours->visibility(light);
        if (known.isKnown()) return known;
    }
    return Visibility(traceVisibility(*scene_, shadowRayStart(from), lights_->lights[light],
                                      from.position, sample, &from.smoothNormal, shadowRays_));
}

bool LightBatch::workOut(std::size_t light, std::size_t point) {
    const LightArrays& arrays = begun(light);
    if (!isDirectional(light)) sampleOne(light, point);
    if (!arrays.visibilities[point].isKnown()) set(light, point, traceOne(light, point));
    return arrays.visibilities[point].fraction() > 0;
}

double LightBatch::cosine(std::size_t light, std::size_t point) {
    const LightArrays& arrays = begun(light);
    if (!isDirectional(light)) {
        sampleOne(light, point);
        if (!(arrays.levels[point] > 0)) return 0;
    }
    return -sampleOf(light, point).direction.dot((*points_)[point].normal);
}

bool LightBatch::illuminateElsewhere(std::size_t light, std::size_t point, const V3d& position,
                                     double direction[3], double color[3]) {
    const ResolvedLight& resolved = lights_->lights[light];
    const std::optional<LightSample> sample = sampleLight(*lights_, resolved, position);
    if (!sample) return false;
    double visibility = 1;
    if (isShadowed(light, (*points_)[point].source())) {
        Ray start;
        start.origin = position;
        start.tMin = 4 * roundingMargin(magnitudeOf(position));
        visibility =
            traceVisibility(*scene_, start, resolved, position, *sample, nullptr, shadowRays_);
    }
    writeVector(sample->direction, direction);
    writeVector(sample->color * visibility, color);
    return visibility > 0;
}

}  // namespace tavora::studio
