#include "studio/render/trace/ray_scene.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fmt/format.h>
#include <map>
#include <new>
#include <set>
#include <span>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "studio/render/trace/hit_filters.h"
#include "studio/render/trace/ray_query.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

using SharedMesh = std::pair<const Mesh*, int>;

SharedMesh sharedMeshOf(const SceneMesh& mesh) {
    return {mesh.mesh, mesh.surfaceIndex};
}

/// Bytes that a copy of the mesh in the world takes, with its part of Embree's tree.
std::uint64_t copySize(const Mesh& mesh) {
    constexpr std::uint64_t kTreeOfTriangle = 72;
    return mesh.positions.size() * sizeof(Imath::V3f) + mesh.triangles.size() * kTreeOfTriangle;
}

/// Whether rays may be brought into the object's space in single precision and meet
/// there what they meet in the world: not where it is squeezed nearly flat.
bool keepsPrecision(const Imath::M44d& objectToWorld) {
    constexpr double kFlattest = 1e-3;
    double longest = 0;
    for (int i = 0; i < 3; ++i) {
        const double* axis = objectToWorld[i];
        longest = std::max(longest, Imath::V3d(axis[0], axis[1], axis[2]).length());
    }
    return std::abs(objectToWorld.determinant()) > kFlattest * longest * longest * longest;
}

/// The meshes to be instances, those first that save most, until the copies of the
/// others fit in `room`. Equal ones go by their place in the scene, so that a picture
/// never depends on where memory was found.
std::set<SharedMesh> meshesToShare(const std::vector<SceneMesh>& meshes, std::uint64_t room) {
    std::set<SharedMesh> seen;
    std::map<SharedMesh, std::uint64_t> savings;
    std::vector<SharedMesh> inOrder;
    std::uint64_t copies = 0;
    for (const SceneMesh& mesh : meshes) {
        const SharedMesh key = sharedMeshOf(mesh);
        if (seen.insert(key).second) {
            inOrder.push_back(key);
            continue;
        }
        savings[key] += copySize(*mesh.mesh);
        copies += copySize(*mesh.mesh);
    }
    std::stable_sort(inOrder.begin(), inOrder.end(), [&](const SharedMesh& a, const SharedMesh& b) {
        return savings[a] > savings[b];
    });
    std::set<SharedMesh> shared;
    for (const SharedMesh& mesh : inOrder) {
        if (copies <= room) break;
        shared.insert(mesh);
        copies -= savings[mesh];
    }
    return shared;
}

}  // namespace

RayScene::RayScene(const SceneIndex& scene, std::uint64_t roomForCopies, SceneUse use)
    : index_(&scene),
      use_(use),
      memory_(scene.scene().memory),
      device_(rtcNewDevice(kEmbreeDevice)) {
    checkDevice();
    if (memory_.budget() != nullptr)
        rtcSetDeviceMemoryMonitorFunction(device_.get(), monitorMemory, this);
    scene_ = newScene(use);
    for (const Surface& surface : scene.scene().surfaces)
        materials_.push_back(materialOf(surface, scene));
    const std::set<SharedMesh> toShare = meshesToShare(scene.meshes(), roomForCopies);
    geometries_.reserve(scene.meshes().size());
    for (const SceneMesh& mesh : scene.meshes()) {
        const bool isShared = toShare.contains(sharedMeshOf(mesh));
        place(mesh, isShared && keepsPrecision(mesh.object->objectToWorld));
    }
    rtcCommitScene(scene_.get());
    checkDevice();
    if (use == SceneUse::Still) return;
    for (const SceneMesh& mesh : scene.meshes())
        states_.push_back(stateOf(mesh));
}

RayScene::MeshState RayScene::stateOf(const SceneMesh& source) const {
    const Mesh& mesh = *source.mesh;
    return {source.object,
            &mesh,
            mesh.triangles.data(),
            mesh.positions.size(),
            mesh.revision,
            source.surfaceIndex,
            source.object->objectToWorld,
            std::nullopt};
}

/// Whether the meshes are those that it was built of, posed otherwise.
bool RayScene::canUpdate() const {
    const std::vector<SceneMesh>& meshes = index_->meshes();
    if (use_ == SceneUse::Still || meshes.size() != states_.size()) return false;
    for (std::size_t i = 0; i < meshes.size(); ++i) {
        const MeshState& before = states_[i];
        const MeshState now = stateOf(meshes[i]);
        if (now.object != before.object || now.triangles != before.triangles ||
            now.vertices != before.vertices || now.surface != before.surface)
            return false;
        const bool isInstance = geometries_[i].isInstance;
        if (isInstance && (now.mesh != before.mesh || now.revision != before.revision ||
                           !keepsPrecision(now.objectToWorld)))
            return false;
    }
    return true;
}

/// False where a surface lets light through otherwise than it did. What a surface shows may
/// take a look at all of a texture, so it is found out anew only where its numbers moved.
bool RayScene::updateTraits() {
    for (Material& material : materials_) {
        if (isCurrent(material)) continue;
        const Material now = materialOf(*material.surface, *index_);
        if (now.alphaMode != material.alphaMode) return false;
        material = now;
    }
    return true;
}

bool RayScene::update() {
    if (!canUpdate() || !updateTraits()) return false;
    const std::vector<SceneMesh>& meshes = index_->meshes();
    for (std::size_t i = 0; i < meshes.size(); ++i) {
        geometries_[i].source = &meshes[i];
        MeshState now = stateOf(meshes[i]);
        MeshState& before = states_[i];
        const bool isAsBefore = now.mesh == before.mesh && now.revision == before.revision &&
                                now.objectToWorld == before.objectToWorld;
        if (isAsBefore || meshes[i].mesh->triangles.empty()) continue;
        now.quality = std::move(before.quality);
        before = std::move(now);
        move(i);
    }
    rtcCommitScene(scene_.get());
    checkDevice();
    return true;
}

/// Refits a mesh's part of the tree, or has it built anew.
void RayScene::move(std::size_t number) {
    MeshGeometry& geometry = geometries_[number];
    const SceneMesh& source = *geometry.source;
    RTCGeometry handle = rtcGetGeometry(scene_.get(), static_cast<unsigned>(number));
    if (geometry.isInstance) {
        replaceMesh(source, geometry);
        const Imath::M44f transform(source.object->objectToWorld);
        rtcSetGeometryTransform(handle, 0, RTC_FORMAT_FLOAT4X4_COLUMN_MAJOR, transform.getValue());
    } else {
        std::optional<RefitQuality>& quality = states_[number].quality;
        const auto& triangles = source.mesh->triangles;
        // Without the spare one; they stay where they are.
        const std::span vertices(geometry.vertices.data(), source.mesh->positions.size());
        if (!quality) quality.emplace(triangles, vertices);
        replaceMesh(source, geometry);
        rtcUpdateGeometryBuffer(handle, RTC_BUFFER_TYPE_VERTEX, 0);
        if (quality->isDegraded(triangles, vertices)) {
            // Other triangles, as far as Embree knows, are what makes it build.
            rtcUpdateGeometryBuffer(handle, RTC_BUFFER_TYPE_INDEX, 0);
            quality.emplace(triangles, vertices);
            ++rebuilds_;
        } else {
            ++refits_;
        }
    }
    rtcCommitGeometry(handle);
}

void RayScene::place(const SceneMesh& source, bool isInstance) {
    const Mesh& mesh = *source.mesh;
    if (!isInstance) takeVertices(source);
    MeshGeometry& geometry =
        geometries_.emplace_back(placeMesh(source, geometries_.size(), isInstance));
    if (mesh.triangles.empty()) return;
    triangles_ += mesh.triangles.size();
    RTCGeometry handle = isInstance ? newInstance(source)
                                    : newTriangles(source, geometry.vertices.data(), &geometry);
    rtcAttachGeometryByID(scene_.get(), handle, static_cast<unsigned>(geometry.number));
    rtcReleaseGeometry(handle);
}

void RayScene::takeVertices(const SceneMesh& source) {
    memory_.take((source.mesh->positions.size() + 1) * sizeof(Imath::V3f),
                 fmt::format("the vertices of \"{}\"", shortened(source.object->name)));
}

/// Embree tells what it is about to take, or took, or gave back.
bool RayScene::monitorMemory(void* self, ssize_t bytes, bool /*isDone*/) {
    auto& scene = *static_cast<RayScene*>(self);
    MemoryBudget& budget = *scene.memory_.budget();
    if (bytes > 0 && !budget.tryTake(static_cast<std::uint64_t>(bytes))) {
        scene.isOverBudget_ = true;
        return false;
    }
    // What was refused may be given back too, though it was not counted.
    if (bytes < 0 && !scene.isOverBudget_) budget.giveBack(static_cast<std::uint64_t>(-bytes));
    return true;
}

void RayScene::checkDevice() const {
    const RTCError error = rtcGetDeviceError(device_.get());
    if (isOverBudget_) memory_.budget()->refuse("the structure that rays are traced in");
    if (error == RTC_ERROR_NONE && device_ != nullptr) return;
    if (error == RTC_ERROR_OUT_OF_MEMORY) throw std::bad_alloc();
    // So it calls whatever its scheduler throws, which wants threads to build with.
    if (error == RTC_ERROR_UNKNOWN) throw std::system_error(EAGAIN, std::generic_category());
    throw std::runtime_error("the ray caster cannot work on this machine");
}

/// Of a film, each mesh has a tree of its own, which can be refitted, under one of all.
RayScene::ScenePtr RayScene::newScene(SceneUse use) const {
    ScenePtr scene(rtcNewScene(device_.get()));
    RTCSceneFlags flags = RTC_SCENE_FLAG_ROBUST | RTC_SCENE_FLAG_CONTEXT_FILTER_FUNCTION;
    if (use == SceneUse::Film) flags = flags | RTC_SCENE_FLAG_DYNAMIC;
    rtcSetSceneFlags(scene.get(), flags);
    if (use == SceneUse::Film) rtcSetSceneBuildQuality(scene.get(), RTC_BUILD_QUALITY_LOW);
    return scene;
}

RTCGeometry RayScene::newTriangles(const SceneMesh& source, const Imath::V3f* vertices,
                                   MeshGeometry* owner) {
    const Mesh& mesh = *source.mesh;
    RTCGeometry handle = rtcNewGeometry(device_.get(), RTC_GEOMETRY_TYPE_TRIANGLE);
    rtcSetSharedGeometryBuffer(handle, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, vertices, 0,
                               sizeof(Imath::V3f), mesh.positions.size());
    rtcSetSharedGeometryBuffer(handle, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                               mesh.triangles.data(), 0, sizeof(mesh.triangles[0]),
                               mesh.triangles.size());
    if (use_ == SceneUse::Film && owner != nullptr)
        rtcSetGeometryBuildQuality(handle, RTC_BUILD_QUALITY_REFIT);
    rtcSetGeometryUserData(handle, owner);
    const Material& own = material(source.surfaceIndex);
    rtcSetGeometryIntersectFilterFunction(handle, hitFilter(own));
    if (!own.surface->castsShadows) {
        rtcSetGeometryOccludedFilterFunction(handle, kNoShadowFilter);
    } else if (own.alphaMode != AlphaMode::Opaque || !own.surface->selfShadow) {
        hasFilteredOccluders_ = true;
        rtcSetGeometryOccludedFilterFunction(handle, kShadowFilter);
    }
    rtcCommitGeometry(handle);
    return handle;
}

/// The mesh as all its instances show it, made for the first of them.
RTCScene RayScene::sharedTriangles(const SceneMesh& source) {
    SharedTriangles& shared = shared_[sharedMeshOf(source)];
    if (shared.scene != nullptr) return shared.scene.get();
    takeVertices(source);
    shared.vertices = source.mesh->positions;
    shared.vertices.emplace_back(0.0F);  // a spare one, for wide loads
    shared.scene = newScene(SceneUse::Still);
    RTCGeometry handle = newTriangles(source, shared.vertices.data(), nullptr);
    rtcAttachGeometry(shared.scene.get(), handle);
    rtcReleaseGeometry(handle);
    rtcCommitScene(shared.scene.get());
    checkDevice();
    return shared.scene.get();
}

RTCGeometry RayScene::newInstance(const SceneMesh& source) {
    RTCScene shared = sharedTriangles(source);
    RTCGeometry handle = rtcNewGeometry(device_.get(), RTC_GEOMETRY_TYPE_INSTANCE);
    rtcSetGeometryInstancedScene(handle, shared);
    const Imath::M44f transform(source.object->objectToWorld);
    rtcSetGeometryTransform(handle, 0, RTC_FORMAT_FLOAT4X4_COLUMN_MAJOR, transform.getValue());
    rtcCommitGeometry(handle);
    return handle;
}

/// The key of a hit of the ray. What an instance is traced by, Embree knows alone; so
/// the ray is sent once more to ask, along the stretch where the hit must be.
HitKey RayScene::keyOf(const RTCRayHit& rayHit, const Hit& hit) const {
    constexpr float kAround = 1e-3F;  // fraction of the distance; far more than rounding
    const MeshGeometry& geometry = geometries_[hit.mesh];
    const RTCRay& ray = rayHit.ray;
    const float distance =
        hitDistance({ray.org_x, ray.org_y, ray.org_z}, {ray.dir_x, ray.dir_y, ray.dir_z},
                    cornersOf(geometry, hit.triangle));
    const HitKey inWorld{distance, hit.mesh, hit.triangle};
    if (!geometry.isInstance) return inWorld;
    HitSearch search{};
    search.target = &hit;
    RayQuery query = rayQuery(*this, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    query.search = &search;
    RTCRayHit again = rayHit;
    again.ray.tnear = std::max(ray.tnear, distance * (1 - kAround));
    again.ray.tfar = std::min(ray.tfar, distance * (1 + kAround));
    rtcIntersect1(scene_.get(), &query.embree, &again);
    return search.after.distance != HitKey{}.distance ? search.after : inWorld;
}

bool RayScene::nextHit(const Ray& ray, const Hit& after, Hit& hit) const {
    RTCRayHit rayHit{};
    setEmbreeRay(ray, 0, rayHit.ray);
    rayHit.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    rayHit.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
    HitSearch search{&ray, limitsOf(ray)};
    if (!after.isNone()) {
        search.after = keyOf(rayHit, after);
        // The filter passes what is not after it; this only saves work.
        rayHit.ray.tnear = std::max(rayHit.ray.tnear, surelyBefore(search.after.distance));
    }
    RayQuery query = rayQuery(*this, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    query.search = &search;
    rtcIntersect1(scene_.get(), &query.embree, &rayHit);
    hit = hitOf(rayHit.hit.geomID, rayHit.hit.instID[0], rayHit.hit.primID);
    return !hit.isNone();
}

bool RayScene::mayTouch(const Imath::V3d& position, double radius) const {
    bool isTouched = false;
    RTCPointQuery query{};
    query.x = static_cast<float>(position.x);
    query.y = static_cast<float>(position.y);
    query.z = static_cast<float>(position.z);
    query.radius = static_cast<float>(radius);
    RTCPointQueryContext context;
    rtcInitPointQueryContext(&context);
    // Called for each triangle whose box the ball around the position overlaps.
    const auto note = [](RTCPointQueryFunctionArguments* arguments) {
        *static_cast<bool*>(arguments->userPtr) = true;
        return false;
    };
    rtcPointQuery(scene_.get(), &query, &context, note, &isTouched);
    return isTouched;
}

double RayScene::transmittance(const Ray& ray) const {
    RTCRay traced;
    setEmbreeRay(ray, 0, traced);
    return transmittance(traced, occlusionState(ray));
}

double RayScene::transmittance(RTCRay ray, OcclusionState state) const {
    ray.id = 0;
    RayQuery query = rayQuery(*this, RTC_INTERSECT_CONTEXT_FLAG_INCOHERENT);
    query.occlusion = &state;
    if (state.limits.exist()) query.embree.filter = kLimitFilter;
    rtcOccluded1(scene_.get(), &query.embree, &ray);
    return isOccluded(ray.tfar) ? 0 : transmittanceOf(state.opticalDepth);
}

}  // namespace tavora::studio
