#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "studio/render/options.h"
#include "studio/scene/lighting/light_set.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// What the live picture is to show. Copies share what is large.
struct PreviewRequest {
    std::uint64_t revision = 0;  ///< grows by one with each change
    std::chrono::steady_clock::time_point since;

    std::optional<Camera> camera;
    int width = 0;
    int height = 0;
    std::uint64_t viewRevision = 0;  ///< of the change that set camera and size last
    FrameTime time;
    std::uint64_t poseRevision = 0;  ///< of the change that posed the scene last
    std::shared_ptr<const LightSet> lights;
    /// By surface; set when `hasShading`. Null: plain.
    std::vector<std::shared_ptr<const StateBlock>> shading;
    bool hasShading = false;

    bool isComplete() const { return camera && lights && hasShading; }
};

}  // namespace tavora::studio
