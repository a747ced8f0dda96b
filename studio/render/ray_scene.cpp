#include "studio/render/ray_scene.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <stdexcept>
#include <system_error>

#include "studio/render/hit_filters.h"
#include "studio/render/ray_context.h"

namespace tavora::studio {
namespace {

HitKey keyOf(const RayScene& scene, const RTCRay& ray, const Hit& hit) {
    const float distance =
        hitDistance({ray.org_x, ray.org_y, ray.org_z}, {ray.dir_x, ray.dir_y, ray.dir_z},
                    cornersOf(scene.geometry(hit.mesh), hit.triangle));
    return {distance, hit.mesh, hit.triangle};
}

}  // namespace

RayScene::RayScene(const SceneIndex& scene)
    : index_(&scene), device_(rtcNewDevice(kEmbreeDevice)), scene_(nullptr) {
    checkDevice();
    scene_.reset(rtcNewScene(device_.get()));
    rtcSetSceneFlags(scene_.get(), RTC_SCENE_FLAG_ROBUST | RTC_SCENE_FLAG_CONTEXT_FILTER_FUNCTION);
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
    if (error == RTC_ERROR_OUT_OF_MEMORY) throw std::bad_alloc();
    // So it calls whatever its scheduler throws, which wants threads to build with.
    if (error == RTC_ERROR_UNKNOWN) throw std::system_error(EAGAIN, std::generic_category());
    throw std::runtime_error("the ray caster cannot work on this machine");
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
    if (!worn.surface->castsShadows) {
        rtcSetGeometryOccludedFilterFunction(handle, kNoShadowFilter);
    } else if (worn.cover != Cover::Solid || !worn.surface->selfShadow) {
        judgesShadows_ = true;
        rtcSetGeometryOccludedFilterFunction(handle, kShadowFilter);
    }
    rtcCommitGeometry(handle);
    rtcAttachGeometryByID(scene_.get(), handle, static_cast<unsigned>(geometry.number));
    rtcReleaseGeometry(handle);
}

bool RayScene::nextHit(const Ray& ray, const Hit& after, Hit& hit) const {
    RTCRayHit query{};
    setEmbreeRay(ray, 0, query.ray);
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    ViewingProgress progress{&ray, limitsOf(ray)};
    if (!after.isNone()) {
        progress.after = keyOf(*this, query.ray, after);
        // The filter passes what is not after it; this only saves work.
        query.ray.tnear = std::max(query.ray.tnear, surelyBefore(progress.after.distance));
    }
    RayContext context = rayContext(*this, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    context.viewing = &progress;
    rtcIntersect1(scene_.get(), &context.embree, &query);
    hit = query.hit.geomID == RTC_INVALID_GEOMETRY_ID ? Hit{}
                                                      : Hit{query.hit.geomID, query.hit.primID};
    return !hit.isNone();
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
    if (progress.limits.exist()) context.embree.filter = kLimitFilter;
    rtcOccluded1(scene_.get(), &context.embree, &ray);
    return isStoppedAt(ray.tfar) ? 0 : lightLeft(progress.darkening);
}

}  // namespace tavora::studio
