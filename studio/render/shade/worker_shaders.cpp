#include "studio/render/shade/worker_shaders.h"

#include <algorithm>
#include <utility>

#include "studio/services/directory_info.h"
#include "studio/services/registry.h"

namespace tavora::studio {
namespace {

constexpr int kRenderMode = 0;

std::vector<SurfaceChange> allOf(const SurfaceShaders& shading) {
    std::vector<SurfaceChange> changes;
    for (std::size_t surface = 0; surface < shading.size(); ++surface)
        changes.push_back({surface, activeBlock(shading[surface])});
    return changes;
}

}  // namespace

WorkerShaders::WorkerShaders(const SceneIndex& scene, std::filesystem::path module)
    : scene_(&scene),
      file_(std::move(module)),
      shaders_(scene.scene().surfaces.size()),
      active_(scene.scene().surfaces.size()) {}

WorkerShaders::WorkerShaders(const SceneIndex& scene, const SurfaceShaders& shading,
                             const std::filesystem::path& module, const FrameTime& time)
    : WorkerShaders(scene, module) {
    time_ = time;
    change(allOf(shading));
}

WorkerShaders::~WorkerShaders() {
    endPass();
}

void WorkerShaders::change(std::span<const SurfaceChange> changes) {
    endPass();
    for (const SurfaceChange& change : changes)
        put(change);
    beginPass();
}

void WorkerShaders::beginFrame(const FrameTime& time) {
    endPass();
    time_ = time;
    beginPass();
}

void WorkerShaders::put(const SurfaceChange& change) {
    std::optional<Shader>& shader = shaders_[change.surface];
    if (change.block == nullptr) return shader.reset();
    if (!module_) module_.emplace(file_, findService);
    if (!shader) {
        // The settings come with the surface, whatever the user stored as default.
        const HiddenSettingsFolder hidden;
        shader.emplace(*module_, scene_->surfaceId(change.surface));
    }
    shader->load(*change.block);
}

void WorkerShaders::beginPass() {
    for (std::size_t surface = 0; surface < shaders_.size(); ++surface) {
        if (!shaders_[surface]) continue;
        shaders_[surface]->beginPass(kRenderMode, time_.frame, time_.seconds);
        active_[surface].shader = &*shaders_[surface];
    }
    for (ActiveShader& active : active_) {
        if (active.shader != nullptr) active.flags = active.shader->flags();
    }
}

void WorkerShaders::endPass() {
    for (const ActiveShader& active : active_) {
        if (active.shader != nullptr) active.shader->endPass();
    }
    std::fill(active_.begin(), active_.end(), ActiveShader{});
}

}  // namespace tavora::studio
