#pragma once

#include <ImathVec.h>
#include <atomic>
#include <cstdint>
#include <embree3/rtcore.h>
#include <map>
#include <memory>
#include <optional>
#include <sys/types.h>
#include <utility>
#include <vector>

#include "studio/render/material/material.h"
#include "studio/render/options.h"
#include "studio/render/trace/hit_order.h"
#include "studio/render/trace/mesh_geometry.h"
#include "studio/render/trace/ray.h"
#include "studio/render/trace/refit_quality.h"
#include "studio/services/scene_index.h"

namespace tavora::studio {

/// The Embree device that pictures are made with. Kernels for later processors fuse
/// multiplications with additions, and so meet another triangle, or none, at edges:
/// these make pictures the same on all.
inline constexpr const char* kEmbreeDevice = "max_isa=avx";

struct OcclusionState;

/// The scene's triangles, ready for rays. Any number of threads may trace.
///
/// Camera rays pass the backs of single-sided surfaces and what is cut out.
/// Shadow rays stop at backs too: a wall without a back still keeps light out.
class RayScene {
  public:
    /// Meshes that several objects show are copied into the world for each of them as
    /// long as the copies take no more than `roomForCopies` bytes: rays are quickest
    /// there. Of others, instances of one are traced.
    static constexpr std::uint64_t kRoomForCopies = std::uint64_t{1} << 26;

    /// `scene` must outlive it. Throws Error where the scene's budget of memory does not
    /// hold it, std::bad_alloc or std::system_error where the machine refuses.
    explicit RayScene(const SceneIndex& scene, std::uint64_t roomForCopies = kRoomForCopies,
                      SceneUse use = SceneUse::Still);
    RayScene(const RayScene&) = delete;
    RayScene& operator=(const RayScene&) = delete;

    /// Brings it to what the scene is now, posed anew and looked up by its refreshed index.
    /// Meshes that moved or bent have their part of the tree refitted, or rebuilt where they
    /// changed too much for that. False where only another RayScene will do: other
    /// meshes or surfaces that let light through otherwise; it is then as before, but for
    /// a scene that is not there any more. No thread may trace meanwhile. Throws as the
    /// constructor.
    bool update();

    /// Since the start, of single meshes, by update().
    std::uint64_t refits() const { return refits_; }
    std::uint64_t rebuilds() const { return rebuilds_; }

    const SceneIndex& index() const { return *index_; }
    const MeshGeometry& geometry(std::uint32_t mesh) const { return geometries_[mesh]; }
    const Material& material(int surface) const {
        return materials_[static_cast<std::size_t>(surface)];
    }
    std::uint64_t triangles() const { return triangles_; }
    RTCScene embree() const { return scene_.get(); }
    /// Whether some of what shadow rays hit does not stop them, or not always, so that they
    /// need an OcclusionState each.
    bool hasFilteredOccluders() const { return hasFilteredOccluders_; }
    /// False only where no triangle lies within `radius` of a position in the world.
    bool mayTouch(const Imath::V3d& position, double radius) const;

    /// The first hit of a camera ray after its hit `after` (none: from its start). False when
    /// there is none; then `hit` is none.
    bool nextHit(const Ray& ray, const Hit& after, Hit& hit) const;

    /// Fraction of the light that passes along `ray`: 0 behind anything solid, the
    /// product of the transparencies of clear surfaces on the way otherwise.
    double transmittance(const Ray& ray) const;
    /// The same along a ray as Embree takes it, with the state that it starts with.
    double transmittance(RTCRay ray, OcclusionState state) const;

  private:
    struct ReleaseDevice {
        void operator()(RTCDevice device) const { rtcReleaseDevice(device); }
    };
    struct ReleaseScene {
        void operator()(RTCScene scene) const { rtcReleaseScene(scene); }
    };
    using DevicePtr = std::unique_ptr<RTCDeviceTy, ReleaseDevice>;
    using ScenePtr = std::unique_ptr<RTCSceneTy, ReleaseScene>;

    /// How a mesh stood when its part of the tree was last brought up to date.
    struct MeshState {
        const Object* object = nullptr;
        const Mesh* mesh = nullptr;
        const void* triangles = nullptr;
        std::size_t vertices = 0;
        std::uint64_t revision = 0;
        int surface = 0;
        Imath::M44d objectToWorld;
        std::optional<RefitQuality> quality;  ///< from the first refit on
    };

    /// In the space of the objects that show it.
    struct SharedTriangles {
        std::vector<Imath::V3f> vertices;
        ScenePtr scene;
    };

    static bool monitorMemory(void* self, ssize_t bytes, bool isDone);
    ScenePtr newScene(SceneUse use) const;
    bool canUpdate() const;
    bool updateTraits();
    MeshState stateOf(const SceneMesh& source) const;
    void move(std::size_t number);
    void place(const SceneMesh& source, bool isInstance);
    void takeVertices(const SceneMesh& source);
    /// Committed, with one reference to release. `owner` is what filters take a hit's
    /// geometry for; null where the instance tells.
    RTCGeometry newTriangles(const SceneMesh& source, const Imath::V3f* vertices,
                             MeshGeometry* owner);
    RTCGeometry newInstance(const SceneMesh& source);
    RTCScene sharedTriangles(const SceneMesh& source);
    HitKey keyOf(const RTCRayHit& rayHit, const Hit& hit) const;
    void checkDevice() const;

    const SceneIndex* index_;
    SceneUse use_;
    std::uint64_t refits_ = 0;
    std::uint64_t rebuilds_ = 0;
    std::vector<MeshState> states_;  ///< of a film, by mesh
    MemoryShare memory_;             ///< for vertices; trees are counted by monitorMemory()
    std::atomic<bool> isOverBudget_{false};
    std::vector<Material> materials_;
    std::vector<MeshGeometry> geometries_;
    std::uint64_t triangles_ = 0;
    bool hasFilteredOccluders_ = false;
    DevicePtr device_;
    /// By mesh and surface, what instances show.
    std::map<std::pair<const Mesh*, int>, SharedTriangles> shared_;
    ScenePtr scene_;
};

}  // namespace tavora::studio
