#include "studio/render/lane_shaders.h"

#include <algorithm>

#include "studio/services/registry.h"

namespace tavora::studio {
namespace {

// Still pictures: a pass is one frame, at the start of time.
constexpr int kRenderMode = 0;
constexpr int kFrame = 0;
constexpr double kSeconds = 0;

}  // namespace

LaneShaders::LaneShaders(const SceneIndex& scene, const std::vector<SurfaceShading>& shading,
                         const std::filesystem::path& module)
    : active_(shading.size()) {
    const bool any = std::any_of(shading.begin(), shading.end(),
                                 [](const SurfaceShading& one) { return one.shader.has_value(); });
    if (any) make(scene, shading, module);
}

LaneShaders::~LaneShaders() {
    for (Shader& shader : shaders_)
        shader.endPass();
}

void LaneShaders::make(const SceneIndex& scene, const std::vector<SurfaceShading>& shading,
                       const std::filesystem::path& module) {
    module_.emplace(module, findService);
    shaders_.reserve(shading.size());
    for (std::size_t surface = 0; surface < shading.size(); ++surface) {
        if (!shading[surface].shader) continue;
        Shader& shader = shaders_.emplace_back(*module_, scene.surfaceId(surface));
        shader.load(*shading[surface].shader);
        active_[surface].shader = &shader;
    }
    for (Shader& shader : shaders_)
        shader.beginPass(kRenderMode, kFrame, kSeconds);
    for (ActiveShader& active : active_) {
        if (active.shader != nullptr) active.flags = active.shader->flags();
    }
}

}  // namespace tavora::studio
