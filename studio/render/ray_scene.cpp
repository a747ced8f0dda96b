#include "studio/render/ray_scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <stdexcept>

#include "studio/render/ray_context.h"
#include "studio/scene/portable_math.h"

namespace tavora::studio {
namespace {

/// Kernels for later processors fuse multiplications with additions, and so meet
/// another triangle, or none, at edges: these make pictures the same on all.
constexpr const char* kDevice = "max_isa=avx";

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
          geometry_(static_cast<const MeshGeometry*>(arguments.geometryUserPtr)) {}

    const RayScene& scene() const { return *context_->scene; }
    ViewingProgress& viewing() const { return context_->viewing[id()]; }
    ShadowProgress& shadow() const { return context_->shadows[id()]; }

    const MeshGeometry& geometry() const { return *geometry_; }
    const SceneMesh& source() const { return *geometry_->source; }
    Cover cover() const { return scene().traits(source().surfaceIndex).cover; }

    HitKey key() const {
        return {RTCRayN_tfar(ray_, count_, number_), RTCHitN_geomID(hit_, count_, number_),
                triangle()};
    }
    unsigned triangle() const { return RTCHitN_primID(hit_, count_, number_); }
    double distance() const { return static_cast<double>(RTCRayN_tfar(ray_, count_, number_)); }

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
    unsigned id() const { return RTCRayN_id(ray_, count_, number_); }

    RTCRayN* ray_;
    RTCHitN* hit_;
    unsigned count_;
    unsigned number_;
    const RayContext* context_;
    const MeshGeometry* geometry_;
};

/// Where a hit lies in its triangle.
struct Spot {
    std::array<Imath::V3d, 3> corners;
    double weights[3];  ///< barycentric
};

/// In double precision from the ray as it was traced: what Embree says differs
/// in the last places by how many rays it traces side by side. By Moller and
/// Trumbore, "Fast, Minimum Storage Ray/Triangle Intersection" (1997).
Spot spotOf(const HitAtFilter& at) {
    Spot spot;
    const auto& vertices = at.source().mesh->triangles[at.triangle()];
    for (std::size_t i = 0; i < 3; ++i)
        spot.corners[i] = Imath::V3d(at.geometry().vertices[vertices[i]]);
    const Imath::V3d origin(at.origin());
    const Imath::V3d direction(at.direction());
    const Imath::V3d edge1 = spot.corners[1] - spot.corners[0];
    const Imath::V3d edge2 = spot.corners[2] - spot.corners[0];
    const Imath::V3d toOrigin = origin - spot.corners[0];
    const Imath::V3d p = direction.cross(edge2);
    const double scale = edge1.dot(p);
    spot.weights[1] = scale != 0 ? toOrigin.dot(p) / scale : 0;
    spot.weights[2] = scale != 0 ? direction.dot(toOrigin.cross(edge1)) / scale : 0;
    spot.weights[0] = 1 - spot.weights[1] - spot.weights[2];
    return spot;
}

/// `footprint` is how wide the ray is there.
double alphaOfHit(const HitAtFilter& at, const Spot& spot, double footprint) {
    TexturePlace place;
    place.mesh = at.source().mesh;
    place.triangle = at.triangle();
    std::copy_n(spot.weights, 3, place.weights);
    place.spotSize = footprint;
    place.worldArea = triangleArea(spot.corners[0], spot.corners[1], spot.corners[2]);
    return alphaAt(at.scene().index(), *at.source().surface, place);
}

bool isCutOut(const HitAtFilter& at, double footprint) {
    return alphaOfHit(at, spotOf(at), footprint) <
           static_cast<double>(at.source().surface->alphaCutoff);
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

bool isUnseenBack(const HitAtFilter& at) {
    return static_cast<double>(at.direction().dot(at.normal())) * at.geometry().facing > 0;
}

bool isPassed(const HitKey& after, const HitKey& key, const HitAtFilter& at) {
    constexpr float kStart = HitKey{}.distance;
    return after.distance != kStart && (key <= after || isSamePassage(after, key, at));
}

/// Tells of surfaces whose backs show, and of others; of those with holes, and others.
template <bool bothSides, bool holes>
bool isSeen(const HitAtFilter& at) {
    ViewingProgress& progress = at.viewing();
    const HitKey key = at.key();
    if (key > progress.best || isPassed(progress.after, key, at)) return false;
    if (!bothSides && isUnseenBack(at)) return false;
    if (holes && isCutOut(at, progress.ray->spotAt(at.distance()))) return false;
    progress.best = key;
    return true;
}

/// Whether the surface is not to shade itself, and it is from there that the
/// shadow ray comes.
bool isSpared(const HitAtFilter& at) {
    const SceneMesh* spared = at.shadow().spared;
    return spared != nullptr && at.source().object == spared->object &&
           at.source().surface == spared->surface;
}

bool stopsLight(const HitAtFilter& at) {
    if (isSpared(at)) return false;
    if (at.cover() == Cover::Solid) return true;
    ShadowProgress& progress = at.shadow();
    const double footprint = progress.spot + progress.spread * at.distance();
    if (at.cover() == Cover::CutOut) return !isCutOut(at, footprint);
    if (progress.leavesClear) {
        progress.metClear = true;
        return false;
    }
    const Spot spot = spotOf(at);
    const double alpha = alphaOfHit(at, spot, footprint);
    if (alpha >= 1) return true;
    // Each of the two triangles at an edge takes half.
    const double share = isOnEdge(spot) ? 0.5 : 1.0;
    progress.darkening += std::llround(-portable::log2(1 - alpha) * share * kLogUnit);
    return progress.darkening > kDarkest;
}

/// Embree hands over one hit each of one ray or of several side by side.
template <bool (*keep)(const HitAtFilter&)>
void filter(const RTCFilterFunctionNArguments* arguments) {
    for (unsigned i = 0; i < arguments->N; ++i) {
        if (arguments->valid[i] != 0 && !keep({*arguments, i})) arguments->valid[i] = 0;
    }
}

RTCFilterFunctionN viewingFilter(const SurfaceTraits& worn) {
    const bool holes = worn.cover == Cover::CutOut;
    if (worn.surface->doubleSided)
        return holes ? filter<isSeen<true, true>> : filter<isSeen<true, false>>;
    return holes ? filter<isSeen<false, true>> : filter<isSeen<false, false>>;
}

}  // namespace

RayScene::RayScene(const SceneIndex& scene)
    : index_(&scene), device_(rtcNewDevice(kDevice)), scene_(nullptr) {
    checkDevice();
    scene_.reset(rtcNewScene(device_.get()));
    rtcSetSceneFlags(scene_.get(), RTC_SCENE_FLAG_ROBUST);
    for (const Surface& surface : scene.scene().surfaces)
        traits_.push_back(traitsOf(surface, scene));
    geometries_.reserve(scene.meshes().size());
    for (const SceneMesh& mesh : scene.meshes()) {
        geometries_.push_back(placeMesh(mesh, geometries_.size()));
        attach(geometries_.back());
    }
    rtcCommitScene(scene_.get());
    checkDevice();
}

RayScene::~RayScene() = default;

void RayScene::checkDevice() const {
    const RTCError error = rtcGetDeviceError(device_.get());
    if (error == RTC_ERROR_NONE && device_ != nullptr) return;
    throw std::runtime_error(error == RTC_ERROR_OUT_OF_MEMORY
                                 ? "not enough memory for the scene's acceleration structure"
                                 : "the ray caster cannot work on this machine");
}

void RayScene::attach(MeshGeometry& geometry) {
    const Mesh& mesh = *geometry.source->mesh;
    if (mesh.triangles.empty()) return;
    triangles_ += mesh.triangles.size();
    RTCGeometry handle = rtcNewGeometry(device_.get(), RTC_GEOMETRY_TYPE_TRIANGLE);
    rtcSetSharedGeometryBuffer(handle, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3,
                               geometry.vertices.data(), 0, sizeof(Imath::V3f),
                               mesh.positions.size());
    rtcSetSharedGeometryBuffer(handle, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                               mesh.triangles.data(), 0, sizeof(mesh.triangles[0]),
                               mesh.triangles.size());
    rtcSetGeometryUserData(handle, &geometry);
    const SurfaceTraits& worn = traits(geometry.source->surfaceIndex);
    rtcSetGeometryIntersectFilterFunction(handle, viewingFilter(worn));
    if (worn.cover != Cover::Solid || !worn.surface->selfShadow) {
        judgesShadows_ = true;
        rtcSetGeometryOccludedFilterFunction(handle, filter<stopsLight>);
    }
    rtcCommitGeometry(handle);
    rtcAttachGeometryByID(scene_.get(), handle, static_cast<unsigned>(geometry.number));
    rtcReleaseGeometry(handle);
}

bool RayScene::nextHit(const Ray& ray, const HitKey& after, HitKey& hit) const {
    ViewingProgress progress{&ray, after};
    RayContext context = rayContext(*this, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    context.viewing = &progress;
    RTCRayHit query{};
    setEmbreeRay(ray, 0, query.ray);
    // The filter passes what is not after `after`; the start only saves work.
    if (after.distance > query.ray.tnear) query.ray.tnear = std::nextafter(after.distance, 0.0F);
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(scene_.get(), &context.embree, &query);
    if (query.hit.geomID == RTC_INVALID_GEOMETRY_ID) return false;
    hit = {query.ray.tfar, query.hit.geomID, query.hit.primID};
    return true;
}

double RayScene::transmittance(const Ray& ray) const {
    RTCRay query;
    setEmbreeRay(ray, 0, query);
    return transmittance(query, shadowProgress(ray));
}

double RayScene::transmittance(RTCRay ray, ShadowProgress progress) const {
    ray.id = 0;
    RayContext context = rayContext(*this, RTC_INTERSECT_CONTEXT_FLAG_INCOHERENT);
    context.shadows = &progress;
    rtcOccluded1(scene_.get(), &context.embree, &ray);
    if (isStoppedAt(ray.tfar)) return 0;
    if (progress.darkening == 0) return 1;
    return portable::exp2(-static_cast<double>(progress.darkening) / kLogUnit);
}

}  // namespace tavora::studio
