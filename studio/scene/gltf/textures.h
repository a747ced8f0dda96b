#pragma once

#include <map>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Reads the uses of a file's textures, and the images that are used into
/// `scene.images`, each decoded once. One thread at a time.
class TextureReader {
  public:
    /// Both must outlive it.
    TextureReader(const GltfSource& source, Scene& scene) : source_(source), scene_(scene) {}

    /// The texture that `info` (an object with an "index") tells of; none where it
    /// is no object. Throws Error for one that cannot be had.
    std::optional<TextureUse> read(const nlohmann::ordered_json& info);

    /// The same for a texture without which a surface still is itself: one that
    /// cannot be had is left out with a warning that it is `what` of `surface`.
    std::optional<TextureUse> readSpare(const nlohmann::ordered_json& info, const char* what,
                                        const std::string& surface);

  private:
    int uvSetOf(const nlohmann::ordered_json& info, int texture) const;
    void readSampler(int index, TextureUse& use) const;
    int imageOf(const tinygltf::Texture& texture, int textureIndex);
    [[noreturn]] void failWithoutImage(const tinygltf::Texture& texture, int textureIndex) const;
    Image decode(int index) const;

    const GltfSource& source_;
    Scene& scene_;
    std::map<int, int> images_;  // index in the file to index in the scene
};

}  // namespace tavora::studio
