#pragma once

#include <ImathVec.h>
#include <cstdint>
#include <embree3/rtcore.h>
#include <limits>
#include <memory>
#include <vector>

#include "studio/render/mesh_geometry.h"
#include "studio/render/surface_traits.h"
#include "studio/services/scene_index.h"

namespace tavora::studio {

/// A ray in the world. Distances are scene units along the unit direction.
struct Ray {
    Imath::V3d origin{0, 0, 0};
    Imath::V3d direction{0, 0, -1};
    double nearest = 0;
    double farthest = std::numeric_limits<double>::infinity();
    double spot = 0;    ///< diameter of the footprint at the origin
    double spread = 0;  ///< by which it grows for each unit of distance
    /// Shadow rays pass what wears its surface on its object; null: nothing.
    const SceneMesh* spared = nullptr;

    double spotAt(double distance) const { return spot + spread * distance; }
};

/// A triangle that a ray meets, or none. How far it is, the ray tells.
struct Hit {
    static constexpr std::uint32_t kNone = 0xffffffff;

    std::uint32_t mesh = kNone;  ///< in RayScene
    std::uint32_t triangle = 0;

    bool isNone() const { return mesh == kNone; }
    bool operator==(const Hit&) const = default;
};

/// The Embree device that pictures are made with. Kernels for later processors fuse
/// multiplications with additions, and so meet another triangle, or none, at edges:
/// these make pictures the same on all.
inline constexpr const char* kEmbreeDevice = "max_isa=avx";

struct ShadowProgress;

/// The scene's triangles, ready for rays. Any number of threads may trace.
///
/// Viewing rays pass the backs of single-sided surfaces and what is cut out.
/// Shadow rays stop at backs too: a wall without a back still keeps light out.
class RayScene {
  public:
    /// `scene` must outlive it. Throws std::runtime_error when memory runs out.
    explicit RayScene(const SceneIndex& scene);
    ~RayScene();
    RayScene(const RayScene&) = delete;
    RayScene& operator=(const RayScene&) = delete;

    const SceneIndex& index() const { return *index_; }
    const MeshGeometry& geometry(std::uint32_t mesh) const { return geometries_[mesh]; }
    const SurfaceTraits& traits(int surface) const {
        return traits_[static_cast<std::size_t>(surface)];
    }
    std::uint64_t triangles() const { return triangles_; }
    RTCScene embree() const { return scene_.get(); }
    /// Whether shadow rays pass some of what they meet, so that their progress counts.
    bool judgesShadows() const { return judgesShadows_; }

    /// The first hit of a viewing ray after `after`, which it meets (none: from its
    /// start). False when there is none; then `hit` is none.
    bool nextHit(const Ray& ray, const Hit& after, Hit& hit) const;

    /// Share of the light that passes along `ray`: 0 behind anything solid, the
    /// product of the transparencies of clear surfaces on the way otherwise.
    double transmittance(const Ray& ray) const;
    /// The same of a ray as Embree takes it, at the start of its progress.
    double transmittance(RTCRay ray, ShadowProgress progress) const;

  private:
    struct ReleaseDevice {
        void operator()(RTCDevice device) const { rtcReleaseDevice(device); }
    };
    struct ReleaseScene {
        void operator()(RTCScene scene) const { rtcReleaseScene(scene); }
    };
    void attach(MeshGeometry& geometry);
    void checkDevice() const;

    const SceneIndex* index_;
    std::vector<SurfaceTraits> traits_;
    std::vector<MeshGeometry> geometries_;
    std::uint64_t triangles_ = 0;
    bool judgesShadows_ = false;
    std::unique_ptr<RTCDeviceTy, ReleaseDevice> device_;
    std::unique_ptr<RTCSceneTy, ReleaseScene> scene_;
};

}  // namespace tavora::studio
