#include "studio/scene/gltf/reader.h"

#include <algorithm>
#include <fmt/format.h>

#include "studio/scene/gltf/animations.h"
#include "studio/scene/gltf/materials.h"
#include "studio/scene/gltf/pose.h"
#include "studio/scene/gltf/source.h"
#include "studio/scene/gltf/unsupported.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

using gltf::Json;

constexpr double kMaxAmbient = 1000;

/// {"tavora": {"ambient": 0.2}} or [r, g, b] in the extras of the scene.
void readAmbient(const GltfSource& source, Scene& scene) {
    const gltf::Scene* shown = gltf::shownScene(source.document);
    if (shown == nullptr) return;
    const Json& ambient = member(gltf::ownExtras(shown->extras), "ambient");
    if (ambient.is_null()) return;
    const auto isLevel = [](const Json& v) { return v.is_number() && v >= 0 && v <= kMaxAmbient; };
    if (isLevel(ambient)) {
        scene.ambient = Imath::V3d(ambient.get<double>());
    } else if (ambient.is_array() && ambient.size() == 3 &&
               std::all_of(ambient.begin(), ambient.end(), isLevel)) {
        scene.ambient = Imath::V3d(ambient[0], ambient[1], ambient[2]);
    } else {
        scene.warnings.push_back(
            fmt::format("{}: /scenes/{}/extras/tavora/ambient is neither a level from 0 to {} nor "
                        "three of them and left out",
                        oneLine(source.path), std::max(source.document.scene, 0), kMaxAmbient));
    }
}

/// The bytes that a surface and an object take in addition to the document, measured on files
/// with little else.
constexpr std::uint64_t kMaterialBytes = 2048;
constexpr std::uint64_t kNodeBytes = 512;

/// A file and the objects that pose its scene.
struct OpenFile {
    OpenFile(GltfSource from, Scene& scene)
        : source(std::move(from)), player(source, scene.warnings, scene.notes) {}

    GltfSource source;
    GltfPoser poser{source};
    AnimationPlayer player;
    bool materialsAnimated = false;  ///< by the animations that were played before
};

}  // namespace

struct GltfScene::Parts {
    Parts(const std::filesystem::path& path, const ReadOptions& options)
        : file(std::make_unique<OpenFile>(readGltfSource(path, options), scene)) {
        const GltfSource& source = file->source;
        scene.path = source.path;
        scene.digest = source.digest;
        scene.memory = source.memory;
        scene.memory->take(source.document.materials.size() * kMaterialBytes, "its materials");
        scene.memory->take(source.document.nodes.size() * kNodeBytes, "its nodes");
        readMaterials(source, scene);
        file->poser.pose(scene);
        scene.animations = readAnimations(source);
        readAmbient(source, scene);
        reportUnsupported(source, scene);
    }

    Scene scene;
    std::unique_ptr<OpenFile> file;  ///< null once it is closed
};

GltfScene::GltfScene(const std::filesystem::path& file, const ReadOptions& options)
    : parts_(std::make_unique<Parts>(file, options)) {}

GltfScene::~GltfScene() = default;

const Scene& GltfScene::scene() const {
    return parts_->scene;
}

Scene& GltfScene::scene() {
    return parts_->scene;
}

std::vector<std::size_t> GltfScene::compatibleAnimations() const {
    if (parts_->file == nullptr) return {};
    return parts_->file->player.compatible();
}

void GltfScene::play(std::span<const std::size_t> animations) {
    if (parts_->file == nullptr) return;
    OpenFile& file = *parts_->file;
    file.materialsAnimated = file.materialsAnimated || file.player.animatesMaterials();
    file.player.play(animations);
}

bool GltfScene::plays() const {
    return parts_->file != nullptr && parts_->file->player.playsAny();
}

void GltfScene::pose(double seconds) {
    if (parts_->file == nullptr) return;
    Scene& scene = parts_->scene;
    OpenFile& file = *parts_->file;
    // Warnings about the file are already there from reading it.
    const std::size_t warnings = scene.warnings.size();
    file.player.setTime(seconds);
    if (file.player.animatesMaterials() || file.materialsAnimated)
        refreshMaterials(file.source, scene);
    file.materialsAnimated = false;
    file.poser.pose(scene);
    scene.warnings.resize(warnings);
}

void GltfScene::close() {
    parts_->file.reset();
}

Scene readGltf(const std::filesystem::path& file, const ReadOptions& options) {
    GltfScene opened(file, options);
    return std::move(opened.scene());
}

}  // namespace tavora::studio
