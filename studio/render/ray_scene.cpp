#include "studio/render/ray_scene.h"

#include <cmath>
#include <cstring>
#include <stdexcept>

namespace tavora::studio {
namespace {

constexpr float kNever = std::numeric_limits<float>::infinity();

/// Transparencies multiply as sums of logarithms in 32 binary places, because
/// integers add up to the same in any order and the order of hits is no one's
/// promise. Halves, quarters and so on stay exact.
constexpr double kLogUnit = 4294967296.0;
/// Less light than this (2^-14) counts as none.
constexpr std::int64_t kDarkest = 14 * static_cast<std::int64_t>(kLogUnit);

/// What filters need to know of the ray; Embree hands it through.
struct RayContext {
    RTCIntersectContext embree;  // comes first: Embree's pointer stands for the whole
    const RayScene* scene;
    const Ray* ray;
    HitKey after;            ///< of viewing rays: hits up to this one are passed
    HitKey best;             ///< of viewing rays: the hit kept so far
    std::int64_t darkening;  ///< of shadow rays: -log2 of the light left
};

RayContext contextFor(const RayScene& scene, const Ray& ray, RTCIntersectContextFlags flags) {
    RayContext context{};
    rtcInitIntersectContext(&context.embree);
    context.embree.flags = flags;
    context.scene = &scene;
    context.ray = &ray;
    return context;
}

double alphaOfHit(const RayContext& context, const MeshGeometry& geometry, const RTCHit& hit,
                  double distance) {
    const SceneMesh& source = *geometry.source;
    const auto& corners = source.mesh->triangles[hit.primID];
    const auto u = static_cast<double>(hit.u);
    const auto v = static_cast<double>(hit.v);
    TexturePlace place;
    place.mesh = source.mesh;
    place.triangle = hit.primID;
    place.weights[0] = 1 - u - v;
    place.weights[1] = u;
    place.weights[2] = v;
    place.spotSize = context.ray->spotAt(distance);
    place.worldArea = triangleArea(Imath::V3d(geometry.vertices[corners[0]]),
                                   Imath::V3d(geometry.vertices[corners[1]]),
                                   Imath::V3d(geometry.vertices[corners[2]]));
    return alphaAt(context.scene->index(), *source.surface, place);
}

bool isCutOut(const RayContext& context, const MeshGeometry& geometry, const RTCHit& hit,
              float distance) {
    const double alpha = alphaOfHit(context, geometry, hit, static_cast<double>(distance));
    return alpha < static_cast<double>(geometry.source->surface->alphaCutoff);
}

/// Rays through the edge between two triangles meet both, though they pass the
/// surface once.
bool isOnEdge(const RTCHit& hit) {
    constexpr float kEdge = 1e-6F;
    return hit.u <= kEdge || hit.v <= kEdge || 1.0F - hit.u - hit.v <= kEdge;
}

/// Whether a hit is the same passage as one before, met by the other triangle.
bool isSamePassage(const HitKey& before, const HitKey& key, const RTCHit& hit) {
    constexpr float kRounding = 1e-6F;
    return key.mesh == before.mesh && isOnEdge(hit) &&
           key.distance - before.distance <= kRounding * key.distance;
}

bool isUnseenBack(const MeshGeometry& geometry, const RTCRay& ray, const RTCHit& hit) {
    if (geometry.source->surface->doubleSided) return false;
    const float along = ray.dir_x * hit.Ng_x + ray.dir_y * hit.Ng_y + ray.dir_z * hit.Ng_z;
    return static_cast<double>(along) * geometry.facing > 0;
}

bool isSeen(RayContext& context, const MeshGeometry& geometry, const RTCRay& ray,
            const RTCHit& hit) {
    const HitKey key{ray.tfar, hit.geomID, hit.primID};
    if (key <= context.after || key > context.best || isSamePassage(context.after, key, hit) ||
        isUnseenBack(geometry, ray, hit)) {
        return false;
    }
    const Cover cover = context.scene->traits(geometry.source->surfaceIndex).cover;
    if (cover == Cover::CutOut && isCutOut(context, geometry, hit, ray.tfar)) return false;
    context.best = key;
    return true;
}

bool stopsLight(RayContext& context, const MeshGeometry& geometry, const RTCRay& ray,
                const RTCHit& hit) {
    const Cover cover = context.scene->traits(geometry.source->surfaceIndex).cover;
    if (cover == Cover::CutOut) return !isCutOut(context, geometry, hit, ray.tfar);
    const double alpha = alphaOfHit(context, geometry, hit, static_cast<double>(ray.tfar));
    if (alpha >= 1) return true;
    // Each of the two triangles at an edge takes half.
    const double share = isOnEdge(hit) ? 0.5 : 1.0;
    context.darkening += std::llround(-std::log2(1 - alpha) * share * kLogUnit);
    return context.darkening > kDarkest;
}

template <bool (*keep)(RayContext&, const MeshGeometry&, const RTCRay&, const RTCHit&)>
void filter(const RTCFilterFunctionNArguments* arguments) {
    // Rays are traced one by one.
    auto& context = *reinterpret_cast<RayContext*>(arguments->context);
    const auto& geometry = *static_cast<const MeshGeometry*>(arguments->geometryUserPtr);
    const auto& ray = *reinterpret_cast<const RTCRay*>(arguments->ray);
    const auto& hit = *reinterpret_cast<const RTCHit*>(arguments->hit);
    if (!keep(context, geometry, ray, hit)) arguments->valid[0] = 0;
}

RTCRay embreeRay(const Ray& ray) {
    RTCRay result{};
    result.org_x = static_cast<float>(ray.origin.x);
    result.org_y = static_cast<float>(ray.origin.y);
    result.org_z = static_cast<float>(ray.origin.z);
    result.dir_x = static_cast<float>(ray.direction.x);
    result.dir_y = static_cast<float>(ray.direction.y);
    result.dir_z = static_cast<float>(ray.direction.z);
    result.tnear = static_cast<float>(ray.nearest);
    result.tfar = static_cast<float>(ray.farthest);
    result.mask = ~0U;
    return result;
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
    if (traits(geometry.source->surfaceIndex).cover != Cover::Solid) {
        rtcSetGeometryOccludedFilterFunction(handle, filter<stopsLight>);
    }
    rtcCommitGeometry(handle);
    rtcAttachGeometryByID(scene_.get(), handle, static_cast<unsigned>(geometry.number));
    rtcReleaseGeometry(handle);
}

bool RayScene::nextHit(const Ray& ray, const HitKey& after, HitKey& hit) const {
    RayContext context = contextFor(*this, ray, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    context.after = after;
    context.best.distance = kNever;
    RTCRayHit query{};
    query.ray = embreeRay(ray);
    // The filter passes what is not after `after`; the start only saves work.
    if (after.distance > query.ray.tnear) query.ray.tnear = std::nextafter(after.distance, 0.0F);
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(scene_.get(), &context.embree, &query);
    if (query.hit.geomID == RTC_INVALID_GEOMETRY_ID) return false;
    hit = {query.ray.tfar, query.hit.geomID, query.hit.primID};
    return true;
}

double RayScene::transmittance(const Ray& ray) const {
    RayContext context = contextFor(*this, ray, RTC_INTERSECT_CONTEXT_FLAG_INCOHERENT);
    RTCRay query = embreeRay(ray);
    rtcOccluded1(scene_.get(), &context.embree, &query);
    if (query.tfar < 0) return 0;
    if (context.darkening == 0) return 1;
    return std::exp2(-static_cast<double>(context.darkening) / kLogUnit);
}

}  // namespace tavora::studio
