#pragma once

#include <map>
#include <optional>
#include <string>

#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Sets the texture transform of `use` from `info`.
void setTransform(const gltf::TextureInfo& info, TextureUse& use);

/// Reads the textures that materials use, and decodes their images, each once, into
/// `scene.images`. One thread at a time.
class TextureReader {
  public:
    /// Both must outlive it.
    TextureReader(const GltfSource& source, Scene& scene) : source_(source), scene_(scene) {}

    /// The texture that `info` refers to; empty when there is none or it has no image. Throws
    /// Error when its image cannot be read.
    std::optional<TextureUse> read(const std::optional<gltf::TextureInfo>& info);

    /// The same for a texture that is not essential: when it cannot be read, it is left out
    /// with a warning that names it as the `what` of `surface`.
    std::optional<TextureUse> readOptional(const gltf::OptionalTexture& spare, const char* what,
                                           const std::string& surface);

  private:
    void checkUvSet(const gltf::TextureInfo& info) const;
    int imageOf(int index);
    [[noreturn]] void failUnsupported(const gltf::Texture& texture, int index) const;
    Image decode(const SourceImage& image) const;

    const GltfSource& source_;
    Scene& scene_;
    /// Indices into the scene's images by their encoded bytes, which several of the file's
    /// images may share.
    std::map<std::pair<const std::uint8_t*, std::size_t>, int> images_;
};

}  // namespace tavora::studio
