#include "studio/render/ray_scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <stdexcept>

#include "studio/render/ray_context.h"

namespace tavora::studio {
namespace {

/// Transparencies multiply as sums of logarithms in 32 binary places, because
/// integers add up to the same in any order and the order of hits is no one's
/// promise. Halves, quarters and so on stay exact.
constexpr double kLogUnit = 4294967296.0;
/// Less light than this (2^-14) counts as none.
constexpr std::int64_t kDarkest = 14 * static_cast<std::int64_t>(kLogUnit);

/// A hit that a filter is to judge.
struct HitAtFilter {
    const RayScene& scene;
    RayProgress& progress;
    const MeshGeometry& geometry;
    RTCRay ray;  ///< ends at the hit
    RTCHit hit;

    double distance() const { return static_cast<double>(ray.tfar); }
    Cover cover() const { return scene.traits(geometry.source->surfaceIndex).cover; }
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
    const auto& vertices = at.geometry.source->mesh->triangles[at.hit.primID];
    for (std::size_t i = 0; i < 3; ++i)
        spot.corners[i] = Imath::V3d(at.geometry.vertices[vertices[i]]);
    const Imath::V3d origin(Imath::V3f(at.ray.org_x, at.ray.org_y, at.ray.org_z));
    const Imath::V3d direction(Imath::V3f(at.ray.dir_x, at.ray.dir_y, at.ray.dir_z));
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

double alphaOfHit(const HitAtFilter& at, const Spot& spot) {
    const SceneMesh& source = *at.geometry.source;
    TexturePlace place;
    place.mesh = source.mesh;
    place.triangle = at.hit.primID;
    std::copy_n(spot.weights, 3, place.weights);
    place.spotSize = at.progress.ray->spotAt(at.distance());
    place.worldArea = triangleArea(spot.corners[0], spot.corners[1], spot.corners[2]);
    return alphaAt(at.scene.index(), *source.surface, place);
}

bool isCutOut(const HitAtFilter& at) {
    return alphaOfHit(at, spotOf(at)) <
           static_cast<double>(at.geometry.source->surface->alphaCutoff);
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
    if (at.geometry.source->surface->doubleSided) return false;
    const float along =
        at.ray.dir_x * at.hit.Ng_x + at.ray.dir_y * at.hit.Ng_y + at.ray.dir_z * at.hit.Ng_z;
    return static_cast<double>(along) * at.geometry.facing > 0;
}

bool isSeen(const HitAtFilter& at) {
    RayProgress& progress = at.progress;
    const HitKey key{at.ray.tfar, at.hit.geomID, at.hit.primID};
    if (key <= progress.after || key > progress.best || isSamePassage(progress.after, key, at) ||
        isUnseenBack(at)) {
        return false;
    }
    if (at.cover() == Cover::CutOut && isCutOut(at)) return false;
    progress.best = key;
    return true;
}

/// Whether the surface is not to shade itself, and it is from there that the
/// shadow ray comes.
bool isSpared(const HitAtFilter& at) {
    const SceneMesh* spared = at.progress.ray->spared;
    const SceneMesh& here = *at.geometry.source;
    return spared != nullptr && here.object == spared->object && here.surface == spared->surface;
}

bool stopsLight(const HitAtFilter& at) {
    if (isSpared(at)) return false;
    if (at.cover() == Cover::Solid) return true;
    if (at.cover() == Cover::CutOut) return !isCutOut(at);
    if (at.progress.leavesClear) {
        at.progress.metClear = true;
        return false;
    }
    const Spot spot = spotOf(at);
    const double alpha = alphaOfHit(at, spot);
    if (alpha >= 1) return true;
    // Each of the two triangles at an edge takes half.
    const double share = isOnEdge(spot) ? 0.5 : 1.0;
    at.progress.darkening += std::llround(-std::log2(1 - alpha) * share * kLogUnit);
    return at.progress.darkening > kDarkest;
}

/// Embree hands over one hit each of one ray or of several side by side.
template <bool (*keep)(const HitAtFilter&)>
void filter(const RTCFilterFunctionNArguments* arguments) {
    const auto& context = *reinterpret_cast<const RayContext*>(arguments->context);
    const auto& geometry = *static_cast<const MeshGeometry*>(arguments->geometryUserPtr);
    for (unsigned i = 0; i < arguments->N; ++i) {
        if (arguments->valid[i] == 0) continue;
        const RTCRay ray = rtcGetRayFromRayN(arguments->ray, arguments->N, i);
        const RTCHit hit = rtcGetHitFromHitN(arguments->hit, arguments->N, i);
        if (!keep({*context.scene, context.rays[ray.id], geometry, ray, hit})) {
            arguments->valid[i] = 0;
        }
    }
}

}  // namespace

RayScene::RayScene(const SceneIndex& scene)
    : index_(&scene), device_(rtcNewDevice(nullptr)), scene_(nullptr) {
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
    rtcSetGeometryIntersectFilterFunction(handle, filter<isSeen>);
    const SurfaceTraits& worn = traits(geometry.source->surfaceIndex);
    if (worn.cover != Cover::Solid || !worn.surface->selfShadow) {
        rtcSetGeometryOccludedFilterFunction(handle, filter<stopsLight>);
    }
    rtcCommitGeometry(handle);
    rtcAttachGeometryByID(scene_.get(), handle, static_cast<unsigned>(geometry.number));
    rtcReleaseGeometry(handle);
}

bool RayScene::nextHit(const Ray& ray, const HitKey& after, HitKey& hit) const {
    RayProgress progress{&ray, after};
    RayContext context = rayContext(*this, &progress, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    RTCRayHit query{};
    query.ray = embreeRay(ray, 0);
    // The filter passes what is not after `after`; the start only saves work.
    if (after.distance > query.ray.tnear) query.ray.tnear = std::nextafter(after.distance, 0.0F);
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(scene_.get(), &context.embree, &query);
    if (query.hit.geomID == RTC_INVALID_GEOMETRY_ID) return false;
    hit = {query.ray.tfar, query.hit.geomID, query.hit.primID};
    return true;
}

double RayScene::transmittance(const Ray& ray) const {
    RayProgress progress{&ray, {}};
    RayContext context = rayContext(*this, &progress, RTC_INTERSECT_CONTEXT_FLAG_INCOHERENT);
    RTCRay query = embreeRay(ray, 0);
    rtcOccluded1(scene_.get(), &context.embree, &query);
    if (isStopped(query)) return 0;
    if (progress.darkening == 0) return 1;
    return std::exp2(-static_cast<double>(progress.darkening) / kLogUnit);
}

}  // namespace tavora::studio
