#pragma once

#include <cstdint>
#include <embree3/rtcore.h>
#include <memory>
#include <vector>

#include "studio/scene/scene.h"

namespace tavora::bench {

struct RayCounts {
    std::uint64_t camera = 0;
    std::uint64_t shadow = 0;
};

/// How many pixels and samples a frame has, and how many threads trace it.
struct FrameSize {
    int width = 0;
    int height = 0;
    int samples = 0;  ///< a pixel
    int threads = 1;
};

/// The reference: a frame's camera rays, and for each hit a shadow ray to each light that the
/// triangle faces on the side that the camera sees, unless its surface takes no shadows. It traces
/// them with the fastest kernels that the processor has and does nothing else: the least that a
/// picture can cost. All surfaces are solid to it, so where others are cut out or let light through
/// it traces less than a picture needs.
class BareLoop {
  public:
    /// Copies the triangles; `lights` must outlive the loop and have no size. Throws
    /// std::runtime_error for what it cannot trace.
    BareLoop(const studio::Scene& scene, const studio::Camera& camera,
             std::vector<const studio::Light*> lights);

    RayCounts trace(const FrameSize& size) const;

  private:
    struct Release {
        void operator()(RTCDevice device) const { rtcReleaseDevice(device); }
        void operator()(RTCScene scene) const { rtcReleaseScene(scene); }
    };

    void attachWhere(const studio::Scene& scene, bool wantsShadows);
    void attach(const studio::Object& object, const studio::Mesh& mesh);

    studio::Camera camera_;
    std::vector<const studio::Light*> lights_;
    std::unique_ptr<RTCDeviceTy, Release> device_;
    std::unique_ptr<RTCSceneTy, Release> scene_;
    unsigned attached_ = 0;
    unsigned shadowed_ = 0;  ///< geometries; they come before those without light or shadows
};

}  // namespace tavora::bench
