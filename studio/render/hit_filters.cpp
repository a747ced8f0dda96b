#include "studio/render/hit_filters.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "studio/render/ray_context.h"
#include "studio/util/deterministic_math.h"

namespace tavora::studio {
namespace {

/// Transparencies multiply as sums of logarithms in 32 binary places, because
/// integers add up to the same in any order and the order of hits is no one's
/// promise. Halves, quarters and so on stay exact.
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
          context_(reinterpret_cast<const RayContext*>(arguments.context)),
          geometry_(static_cast<const MeshGeometry*>(arguments.geometryUserPtr)) {
        // What instances share belongs to none of them.
        if (geometry_ == nullptr)
            geometry_ = &scene().geometry(RTCHitN_instID(hit_, count_, number_, 0));
    }

    const RayScene& scene() const { return *context_->scene; }
    const RayContext& context() const { return *context_; }
    unsigned id() const { return RTCRayN_id(ray_, count_, number_); }
    ShadowProgress& shadow() const { return context_->shadows[id()]; }

    const MeshGeometry& geometry() const { return *geometry_; }
    const SceneMesh& source() const { return *geometry_->source; }
    Cover cover() const { return scene().traits(source().surfaceIndex).cover; }
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
    const RayContext* context_;
    const MeshGeometry* geometry_;
};

/// Where a hit lies in its triangle, and how far along its ray.
struct Spot {
    double weights[3];  ///< barycentric
    double distance;
};

/// In double precision from the ray as it was traced: what Embree says differs
/// in the last places by processor and by how many rays it traces side by side. By
/// Moller and Trumbore, "Fast, Minimum Storage Ray/Triangle Intersection" (1997).
Spot spotOf(const HitAtFilter& at) {
    Spot spot;
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
    spot.weights[1] = toOrigin.dot(p) * factor;
    spot.weights[2] = direction.dot(q) * factor;
    spot.weights[0] = 1 - spot.weights[1] - spot.weights[2];
    spot.distance = edge2.dot(q) * factor;
    return spot;
}

/// `wide` tells how wide the ray is, by spotAt().
template <class Width>
double alphaOfHit(const HitAtFilter& at, const Spot& spot, const Width& wide) {
    MeshPoint place;
    place.mesh = at.source().mesh;
    place.triangle = at.triangle();
    std::copy_n(spot.weights, 3, place.weights);
    place.footprint = wide.spotAt(spot.distance);
    const std::array<Imath::V3f, 3> corners = cornersOf(at.geometry(), at.triangle());
    place.worldArea =
        triangleArea(Imath::V3d(corners[0]), Imath::V3d(corners[1]), Imath::V3d(corners[2]));
    return alphaAt(at.scene().index(), *at.source().surface, place);
}

/// Compared as the scene's numbers are kept: in doubles, a byte of 51 would miss 0.2.
template <class Width>
bool isCutOut(const HitAtFilter& at, const Width& wide) {
    const auto alpha = static_cast<float>(alphaOfHit(at, spotOf(at), wide));
    return alpha < at.source().surface->alphaCutoff;
}

/// Rays through the edge between two triangles meet both, though they pass the
/// surface once.
bool isOnEdge(const Spot& spot) {
    constexpr double kEdge = 1e-6;
    return std::min({spot.weights[0], spot.weights[1], spot.weights[2]}) <= kEdge;
}

/// Whether a hit is the same passage as one before, met by the other triangle.
bool isSamePassage(const HitKey& before, const HitKey& key, const HitAtFilter& at) {
    constexpr float kRounding = 1e-6F;
    return key.mesh == before.mesh && key.distance - before.distance <= kRounding * key.distance &&
           isOnEdge(spotOf(at));
}

bool isPassed(const HitKey& after, const HitKey& key, const HitAtFilter& at) {
    constexpr float kStart = HitKey{}.distance;
    return after.distance != kStart && (key <= after || isSamePassage(after, key, at));
}

/// Which surfaces show their backs, and which have holes.
struct Wear {
    bool bothSides;
    bool holes;
};

template <Wear worn>
bool isSeen(const HitAtFilter& at, const Ray& ray) {
    if (!worn.bothSides && at.isBack()) return false;
    return !worn.holes || !isCutOut(at, ray);
}

/// Of many rays from their start: Embree tells which hit comes first where it can.
template <Wear worn>
bool isFirst(const HitAtFilter& at, const FirstHits& first) {
    const unsigned id = at.id();
    if (!isSeen<worn>(at, first.rays[id])) return false;
    const float distance = at.roughDistance();
    if (distance >= surelyBefore(first.distances[id])) first.areDoubtful[id] = 1;
    first.distances[id] = distance;
    at.lookOnAsFarAs(surelyBeyond(distance));
    return true;
}

/// Of one ray: the order is worked out.
template <Wear worn>
bool isNext(const HitAtFilter& at, ViewingProgress& progress) {
    if (progress.seeks != nullptr) {
        const Hit& sought = *progress.seeks;
        if (at.mesh() == sought.mesh && at.triangle() == sought.triangle) progress.after = at.key();
        return false;
    }
    const HitKey key = at.key();
    if (key > progress.best || !progress.limits.hold(key.distance)) return false;
    if (isPassed(progress.after, key, at) || !isSeen<worn>(at, *progress.ray)) return false;
    progress.best = key;
    at.lookOnAsFarAs(surelyBeyond(key.distance));
    return true;
}

template <Wear worn>
bool isMet(const HitAtFilter& at) {
    const RayContext& context = at.context();
    return context.viewing != nullptr ? isNext<worn>(at, *context.viewing)
                                      : isFirst<worn>(at, context.first);
}

/// Whether it lies where the ray is looked at; only near the ends it costs to say.
bool isWithinLimits(const HitAtFilter& at) {
    const Limits& limits = at.shadow().limits;
    const float rough = at.roughDistance();
    if (rough > surelyBeyond(limits.nearest) && rough < surelyBefore(limits.farthest)) return true;
    return limits.hold(at.key().distance);
}

/// Whether the surface is not to shade itself, and it is from there that the
/// shadow ray comes.
bool isSpared(const HitAtFilter& at) {
    const SceneMesh* spared = at.shadow().spared;
    return spared != nullptr && at.source().object == spared->object &&
           at.source().surface == spared->surface;
}

bool stopsLight(const HitAtFilter& at) {
    if (isSpared(at) || !isWithinLimits(at)) return false;
    if (at.cover() == Cover::Solid) return true;
    ShadowProgress& progress = at.shadow();
    if (at.cover() == Cover::CutOut) return !isCutOut(at, progress);
    if (progress.leavesClear) {
        progress.metClear = true;
        return false;
    }
    const Spot spot = spotOf(at);
    const double alpha = alphaOfHit(at, spot, progress);
    if (alpha >= 1) return true;
    // Each of the two triangles at an edge takes half.
    const double share = isOnEdge(spot) ? 0.5 : 1.0;
    progress.darkening += std::llround(-deterministic::log2(1 - alpha) * share * kLogUnit);
    return progress.darkening > kDarkest;
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

RTCFilterFunctionN viewingFilter(const SurfaceTraits& worn) {
    const bool holes = worn.cover == Cover::CutOut;
    if (worn.surface->doubleSided)
        return holes ? filter<isMet<Wear{true, true}>> : filter<isMet<Wear{true, false}>>;
    return holes ? filter<isMet<Wear{false, true}>> : filter<isMet<Wear{false, false}>>;
}

const RTCFilterFunctionN kShadowFilter = filter<stopsLight>;
const RTCFilterFunctionN kNoShadowFilter = filter<neverStopsLight>;
const RTCFilterFunctionN kLimitFilter = filter<isWithinLimits>;

double lightLeft(std::int64_t darkening) {
    return darkening == 0 ? 1 : deterministic::exp2(-static_cast<double>(darkening) / kLogUnit);
}

}  // namespace tavora::studio
