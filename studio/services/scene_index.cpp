#include "studio/services/scene_index.h"

#include <bit>
#include <fmt/format.h>

#include "studio/util/text.h"

namespace tavora::studio {
namespace {

/// A polygon identity has the mesh's index + 1 in its upper half, the triangle in the lower.
constexpr unsigned kMeshShift = 32;

static_assert(sizeof(std::uintptr_t) == 8, "polygon identities need 64 bits");

}  // namespace

SceneIndex::SceneIndex(const Scene& scene)
    : scene_(&scene), memory_(scene.memory), pyramids_(2 * scene.images.size()) {
    refresh();
    for (const Surface& surface : scene.surfaces) {
        addPyramid(surface.baseColorTexture);
        addPyramid(surface.emissiveTexture);
        addPyramid(surface.translucencyTexture);
        if (surface.normalMap) addPyramid(surface.normalTexture);
    }
}

void SceneIndex::refresh() {
    objects_.clear();
    meshes_.clear();
    for (const auto& object : scene_->objects) {
        objects_.emplace(object.get(), objects_.size());
        for (const Part& part : object->parts) {
            const auto& surface = scene_->surfaces[static_cast<std::size_t>(part.surface)];
            meshes_.push_back({object.get(), &part, part.mesh.get(), &surface, part.surface});
        }
    }
}

std::optional<std::size_t> SceneIndex::pyramidIndex(const TextureUse& use) const {
    const std::size_t images = scene_->images.size();
    const auto image = static_cast<std::size_t>(use.image);
    if (use.image < 0 || image >= images) return std::nullopt;
    return use.isData ? images + image : image;
}

void SceneIndex::addPyramid(const std::optional<TextureUse>& use) {
    if (!use) return;
    const std::optional<std::size_t> index = pyramidIndex(*use);
    if (!index || pyramids_[*index] != nullptr) return;
    const Image& image = scene_->images[static_cast<std::size_t>(use->image)];
    if (image.rgba.empty()) return;
    memory_.take(TexturePyramid::sizeFor(image),
                 fmt::format("the texture \"{}\" made ready for look-ups", shortened(image.name)));
    pyramids_[*index] = std::make_unique<TexturePyramid>(image, use->isData);
}

const TexturePyramid* SceneIndex::pyramid(const TextureUse& use) const {
    const std::optional<std::size_t> index = pyramidIndex(use);
    return index ? pyramids_[*index].get() : nullptr;
}

std::optional<std::size_t> SceneIndex::objectIndex(HostItemId id) const {
    const auto found = objects_.find(id);
    if (found == objects_.end()) return std::nullopt;
    return found->second;
}

std::optional<std::size_t> SceneIndex::surfaceIndex(HostSurfaceId id) const {
    const auto first = reinterpret_cast<std::uintptr_t>(scene_->surfaces.data());
    const auto offset = reinterpret_cast<std::uintptr_t>(id) - first;  // wraps for others
    if (id == nullptr || offset % sizeof(Surface) != 0) return std::nullopt;
    const std::size_t index = offset / sizeof(Surface);
    if (index >= scene_->surfaces.size()) return std::nullopt;
    return index;
}

HostSurfaceId SceneIndex::surfaceId(std::size_t surface) const {
    return reinterpret_cast<HostSurfaceId>(const_cast<Surface*>(&scene_->surfaces[surface]));
}

HostPolygonId SceneIndex::polygonId(std::size_t mesh, std::uint32_t triangle) const {
    return std::bit_cast<HostPolygonId>((mesh + 1) << kMeshShift | triangle);
}

SceneTriangle SceneIndex::triangle(HostPolygonId id) const {
    const auto word = reinterpret_cast<std::uintptr_t>(id);
    const std::size_t mesh = (word >> kMeshShift) - 1;  // wraps for null
    const auto number = static_cast<std::uint32_t>(word);
    if (mesh >= meshes_.size() || number >= meshes_[mesh].mesh->triangles.size()) return {};
    return {&meshes_[mesh], number};
}

}  // namespace tavora::studio
