#include "studio/render/trace/hit_filters.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "studio/render/trace/ray_query.h"
#include "studio/util/deterministic_math.h"

namespace tavora::studio {
namespace {

/// Transparencies multiply as sums of logarithms in 32 binary places: integers add up to the
/// same in any order, and Embree promises none. Halves, quarters and so on stay exact.
constexpr double kLogUnit = 4294967296.0;
/// Less light than this (2^-14) counts as none.
constexpr std::int64_t kDarkest = 14 * static_cast<std::int64_t>(kLogUnit);

/// A hit that a filter is to judge, one of those that Embree hands over at once.
/// The ray ends at it.
class HitAtFilter {
  public:
    HitAtFilter(const RTCFilterFunctionNArguments& arguments, unsigned number)
        : ray_(arguments.ray),
          hit_(arguments.hit),
          count_(arguments.N),
          number_(number),
          query_(reinterpret_cast<const RayQuery*>(arguments.context)),
          geometry_(static_cast<const MeshGeometry*>(arguments.geometryUserPtr)) {
        // What instances share belongs to none of them.
        if (geometry_ == nullptr)
            geometry_ = &scene().geometry(RTCHitN_instID(hit_, count_, number_, 0));
    }

    const RayScene& scene() const { return *query_->scene; }
    const RayQuery& query() const { return *query_; }
    unsigned id() const { return RTCRayN_id(ray_, count_, number_); }
    OcclusionState& occlusion() const { return query_->occlusion[id()]; }

    const MeshGeometry& geometry() const { return *geometry_; }
    const SceneMesh& source() const { return *geometry_->source; }
    AlphaMode alphaMode() const { return scene().material(source().surfaceIndex).alphaMode; }
    std::uint32_t mesh() const { return static_cast<std::uint32_t>(geometry_->number); }
    unsigned triangle() const { return RTCHitN_primID(hit_, count_, number_); }
    /// In the space in which the triangle is traced, as the ray.
    std::array<Imath::V3f, 3> corners() const { return tracedCornersOf(*geometry_, triangle()); }
    bool isBack() const {
        const auto along = static_cast<double>(direction().dot(normal()));
        // In the object's own space a transform that mirrors turns nothing inside out.
        const double sign = geometry_->isInstance ? geometry_->handedness : 1;
        return along * geometry_->facing * sign > 0;
    }

    /// As Embree has it: not quite the same on all processors.
    float roughDistance() const { return RTCRayN_tfar(ray_, count_, number_); }
    HitKey key() const {
        return {hitDistance(origin(), direction(), corners()), mesh(), triangle()};
    }
    /// Once the hit is kept: Embree still hands over hits so far along the ray.
    void lookOnAsFarAs(float distance) const { RTCRayN_tfar(ray_, count_, number_) = distance; }

    Imath::V3f origin() const {
        return {RTCRayN_org_x(ray_, count_, number_), RTCRayN_org_y(ray_, count_, number_),
                RTCRayN_org_z(ray_, count_, number_)};
    }
    Imath::V3f direction() const {
        return {RTCRayN_dir_x(ray_, count_, number_), RTCRayN_dir_y(ray_, count_, number_),
                RTCRayN_dir_z(ray_, count_, number_)};
    }
    /// Of the triangle, of any length.
    Imath::V3f normal() const {
        return {RTCHitN_Ng_x(hit_, count_, number_), RTCHitN_Ng_y(hit_, count_, number_),
                RTCHitN_Ng_z(hit_, count_, number_)};
    }

  private:
    RTCRayN* ray_;
    RTCHitN* hit_;
    unsigned count_;
    unsigned number_;
    const RayQuery* query_;
    const MeshGeometry* geometry_;
};

/// Where a hit lies in its triangle, and how far along its ray.
struct TrianglePoint {
    double weights[3];  ///< barycentric
    double distance;
};

/// In double precision from the ray as it was traced: what Embree says differs
/// in the last places by processor and by how many rays it traces side by side. By
/// Moller and Trumbore, "Fast, Minimum Storage Ray/Triangle Intersection" (1997).
TrianglePoint pointOf(const HitAtFilter& at) {
    TrianglePoint point;
    const std::array<Imath::V3f, 3> corners = at.corners();
    const Imath::V3d corner(corners[0]);
    const Imath::V3d origin(at.origin());
    const Imath::V3d direction(at.direction());
    const Imath::V3d edge1 = Imath::V3d(corners[1]) - corner;
    const Imath::V3d edge2 = Imath::V3d(corners[2]) - corner;
    const Imath::V3d toOrigin = origin - corner;
    const Imath::V3d p = direction.cross(edge2);
    const Imath::V3d q = toOrigin.cross(edge1);
    const double scale = edge1.dot(p);
    const double factor = scale != 0 ? 1 / scale : 0;
    point.weights[1] = toOrigin.dot(p) * factor;
    point.weights[2] = direction.dot(q) * factor;
    point.weights[0] = 1 - point.weights[1] - point.weights[2];
    point.distance = edge2.dot(q) * factor;
    return point;
}

/// `cone` tells how wide the ray is, by footprintAt().
template <class Cone>
double alphaOfHit(const HitAtFilter& at, const TrianglePoint& point, const Cone& cone) {
    MeshPoint textured;
    textured.mesh = at.source().mesh;
    textured.triangle = at.triangle();
    std::copy_n(point.weights, 3, textured.weights);
    textured.footprint = cone.footprintAt(point.distance);
    const std::array<Imath::V3f, 3> corners = cornersOf(at.geometry(), at.triangle());
    textured.worldArea =
        triangleArea(Imath::V3d(corners[0]), Imath::V3d(corners[1]), Imath::V3d(corners[2]));
    return alphaAt(at.scene().index(), *at.source().surface, textured);
}

/// Compared as the scene's numbers are kept: in doubles, a byte of 51 would miss 0.2.
template <class Cone>
bool isCutOut(const HitAtFilter& at, const Cone& cone) {
    const auto alpha = static_cast<float>(alphaOfHit(at, pointOf(at), cone));
    return alpha < at.source().surface->alphaCutoff;
}

/// Rays through the edge between two triangles meet both, though they pass the
/// surface once.
bool isOnEdge(const TrianglePoint& point) {
    constexpr double kEdge = 1e-6;
    return std::min({point.weights[0], point.weights[1], point.weights[2]}) <= kEdge;
}

/// Whether a hit is the same passage as one before, on the other triangle.
bool isSamePassage(const HitKey& before, const HitKey& key, const HitAtFilter& at) {
    constexpr float kRounding = 1e-6F;
    return key.mesh == before.mesh && key.distance - before.distance <= kRounding * key.distance &&
           isOnEdge(pointOf(at));
}

bool isPassed(const HitKey& after, const HitKey& key, const HitAtFilter& at) {
    constexpr float kStart = HitKey{}.distance;
    return after.distance != kStart && (key <= after || isSamePassage(after, key, at));
}

/// Which surfaces show their backs, and which have holes.
struct FilterKind {
    bool bothSides;
    bool holes;
};

template <FilterKind kind, class Cone>
bool isSeen(const HitAtFilter& at, const Cone& cone) {
    if (!kind.bothSides && at.isBack()) return false;
    return !kind.holes || !isCutOut(at, cone);
}

/// Of many rays from their start: Embree tells which hit comes first where it can.
template <FilterKind kind>
bool isFirst(const HitAtFilter& at, const FirstHitSearch& first) {
    const unsigned id = at.id();
    if (!isSeen<kind>(at, first)) return false;
    const float distance = at.roughDistance();
    if (distance >= surelyBefore(first.distances[id])) first.isDoubtful[id] = 1;
    first.distances[id] = distance;
    at.lookOnAsFarAs(surelyBeyond(distance));
    return true;
}

/// Of one ray: the order is worked out.
template <FilterKind kind>
bool isNext(const HitAtFilter& at, HitSearch& search) {
    if (search.target != nullptr) {
        const Hit& sought = *search.target;
        if (at.mesh() == sought.mesh && at.triangle() == sought.triangle) search.after = at.key();
        return false;
    }
    const HitKey key = at.key();
    if (key > search.best || !search.limits.hold(key.distance)) return false;
    if (isPassed(search.after, key, at) || !isSeen<kind>(at, *search.ray)) return false;
    search.best = key;
    at.lookOnAsFarAs(surelyBeyond(key.distance));
    return true;
}

template <FilterKind kind>
bool isHit(const HitAtFilter& at) {
    const RayQuery& query = at.query();
    return query.search != nullptr ? isNext<kind>(at, *query.search)
                                   : isFirst<kind>(at, query.first);
}

/// Whether the hit lies between the limits of its ray. Its exact distance is worked out
/// only near them.
bool isWithinLimits(const HitAtFilter& at) {
    const RayLimits& limits = at.occlusion().limits;
    const float rough = at.roughDistance();
    if (rough > surelyBeyond(limits.tMin) && rough < surelyBefore(limits.tMax)) return true;
    return limits.hold(at.key().distance);
}

/// Whether the shadow ray comes from the same surface of the same object, and that casts no
/// shadow on itself.
bool isExcludedSelf(const HitAtFilter& at) {
    const SceneMesh* excludedSelf = at.occlusion().excludedSelf;
    return excludedSelf != nullptr && at.source().object == excludedSelf->object &&
           at.source().surface == excludedSelf->surface;
}

bool stopsLight(const HitAtFilter& at) {
    if (isExcludedSelf(at) || !isWithinLimits(at)) return false;
    if (at.alphaMode() == AlphaMode::Opaque) return true;
    OcclusionState& state = at.occlusion();
    if (at.alphaMode() == AlphaMode::Mask) return !isCutOut(at, state);
    if (state.skipsClear) {
        state.hitClear = true;
        return false;
    }
    const TrianglePoint point = pointOf(at);
    const double alpha = alphaOfHit(at, point, state);
    if (alpha >= 1) return true;
    // Each of the two triangles at an edge takes half.
    const double weight = isOnEdge(point) ? 0.5 : 1.0;
    state.opticalDepth += std::llround(-deterministic::log2(1 - alpha) * weight * kLogUnit);
    return state.opticalDepth > kDarkest;
}

bool neverStopsLight(const HitAtFilter&) {
    return false;
}

/// Embree hands over one hit each of one ray or of several side by side.
template <bool (*keep)(const HitAtFilter&)>
void filter(const RTCFilterFunctionNArguments* arguments) {
    for (unsigned i = 0; i < arguments->N; ++i) {
        if (arguments->valid[i] != 0 && !keep({*arguments, i})) arguments->valid[i] = 0;
    }
}

}  // namespace

RTCFilterFunctionN hitFilter(const Material& material) {
    const bool holes = material.alphaMode == AlphaMode::Mask;
    if (material.surface->doubleSided)
        return holes ? filter<isHit<FilterKind{true, true}>>
                     : filter<isHit<FilterKind{true, false}>>;
    return holes ? filter<isHit<FilterKind{false, true}>> : filter<isHit<FilterKind{false, false}>>;
}

const RTCFilterFunctionN kShadowFilter = filter<stopsLight>;
const RTCFilterFunctionN kNoShadowFilter = filter<neverStopsLight>;
const RTCFilterFunctionN kLimitFilter = filter<isWithinLimits>;

double transmittanceOf(std::int64_t opticalDepth) {
    return opticalDepth == 0 ? 1
                             : deterministic::exp2(-static_cast<double>(opticalDepth) / kLogUnit);
}

}  // namespace tavora::studio
