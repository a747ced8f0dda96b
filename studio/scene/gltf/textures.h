#pragma once

#include <map>
#include <optional>
#include <string>

#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Where `info` places a texture on a surface.
void placeTexture(const gltf::TextureInfo& info, TextureUse& use);

/// Reads the uses of a file's textures, and the images that are used into
/// `scene.images`, each decoded once. One thread at a time.
class TextureReader {
  public:
    /// Both must outlive it.
    TextureReader(const GltfSource& source, Scene& scene) : source_(source), scene_(scene) {}

    /// The texture that `info` tells of; none where there is none, or where it has
    /// no image. Throws Error for one that cannot be had.
    std::optional<TextureUse> read(const std::optional<gltf::TextureInfo>& info);

    /// The same for a texture without which a surface still is itself: one that
    /// cannot be had is left out with a warning that it is `what` of `surface`.
    std::optional<TextureUse> readSpare(const gltf::SpareTexture& spare, const char* what,
                                        const std::string& surface);

  private:
    void checkUvSet(const gltf::TextureInfo& info) const;
    int imageOf(int index);
    [[noreturn]] void failUnread(const gltf::Texture& texture, int index) const;
    Image decode(const SourceImage& image) const;

    const GltfSource& source_;
    Scene& scene_;
    /// Images of the scene by the bytes that they were made of, which several of the
    /// file's images may share.
    std::map<std::pair<const std::uint8_t*, std::size_t>, int> images_;
};

}  // namespace tavora::studio
