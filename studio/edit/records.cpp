#include "studio/edit/records.h"

#include "studio/link/module_file.h"
#include "studio/services/registry.h"

namespace tavora::studio {
namespace {

HostSurfaceId surfaceId(const Surface& surface) {
    return reinterpret_cast<HostSurfaceId>(const_cast<Surface*>(&surface));
}

}  // namespace

Records::Records(const std::string& option, const Scene& scene)
    : scene_(&scene),
      module_(findModule(option), findServiceOrWindow),
      scratch_(module_, nullptr),
      records_(scene.surfaces.size()) {}

ShaderClass Records::shaderClass() const {
    return {module_.file(), module_.server(), defaults()};
}

StateBlock Records::settled(const StateBlock& block) {
    scratch_.load(block);
    return scratch_.save();
}

Shader& Records::at(std::size_t surface, const SurfaceSettings& settings) {
    std::unique_ptr<Shader>& record = records_[surface];
    if (record == nullptr) {
        auto made = std::make_unique<Shader>(module_, surfaceId(scene_->surfaces[surface]));
        if (settings.block) made->load(*settings.block);
        record = std::move(made);
    }
    return *record;
}

void Records::show(std::size_t surface, const SurfaceSettings& settings) {
    if (records_[surface] == nullptr) return;
    records_[surface]->load(settings.block ? *settings.block : defaults());
}

std::optional<std::size_t> Records::surfaceOf(HostInstance instance) const {
    for (std::size_t i = 0; i < records_.size(); ++i) {
        if (records_[i] != nullptr && records_[i]->instance() == instance) return i;
    }
    return std::nullopt;
}

}  // namespace tavora::studio
