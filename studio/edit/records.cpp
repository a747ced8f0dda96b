#include "studio/edit/records.h"

#include "studio/link/module_file.h"
#include "studio/services/directory_info.h"
#include "studio/services/registry.h"

namespace tavora::studio {
namespace {

HostSurfaceId surfaceId(const Surface& surface) {
    return reinterpret_cast<HostSurfaceId>(const_cast<Surface*>(&surface));
}

/// For settings that are loaded next: what the user stored is not read first.
Shader recordToLoad(const ModuleCopy& module, HostSurfaceId surface) {
    const HiddenSettingsFolder hidden;
    return Shader(module, surface);
}

}  // namespace

Records::Records(const std::string& option, const Scene& scene)
    : scene_(&scene),
      module_(findModule(option), findServiceOrWindow),
      scratch_(recordToLoad(module_, nullptr)),
      records_(scene.surfaces.size()) {}

ShaderClass Records::shaderClass() const {
    return {module_.file(), module_.server(), builtIn()};
}

StateBlock Records::settled(const StateBlock& block) {
    scratch_.load(block);
    return scratch_.save();
}

Shader& Records::at(std::size_t surface, const std::optional<SurfaceShader>& shader) {
    std::unique_ptr<Shader>& record = records_[surface];
    if (record == nullptr) {
        const HostSurfaceId id = surfaceId(scene_->surfaces[surface]);
        auto made = std::make_unique<Shader>(recordToLoad(module_, id));
        made->load(shader ? shader->block : defaults());
        record = std::move(made);
    }
    return *record;
}

void Records::show(std::size_t surface, const std::optional<SurfaceShader>& shader) {
    if (records_[surface] == nullptr) return;
    records_[surface]->load(shader ? shader->block : defaults());
}

std::optional<std::size_t> Records::surfaceOf(HostInstance instance) const {
    for (std::size_t i = 0; i < records_.size(); ++i) {
        if (records_[i] != nullptr && records_[i]->instance() == instance) return i;
    }
    return std::nullopt;
}

}  // namespace tavora::studio
