#include "studio/scene/gltf/textures.h"

#include <fmt/format.h>

#include "studio/scene/gltf/accessor.h"
#include "studio/scene/image/image_decoder.h"
#include "studio/util/error.h"
#include "studio/util/json_members.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kLastUvSet = 3;

void readTransform(const Json& transform, TextureUse& use) {
    if (!transform.is_object()) return;
    const Json& offset = member(transform, "offset");
    const Json& scale = member(transform, "scale");
    use.offset = {static_cast<float>(componentOr(offset, 0, 0)),
                  static_cast<float>(componentOr(offset, 1, 0))};
    use.scale = {static_cast<float>(componentOr(scale, 0, 1)),
                 static_cast<float>(componentOr(scale, 1, 1))};
    use.rotation = static_cast<float>(numberOr(member(transform, "rotation"), 0.0));
}

}  // namespace

std::optional<TextureUse> TextureReader::read(const Json& info) {
    if (!info.is_object()) return std::nullopt;
    TextureUse use;
    const int index = indexOf(member(info, "index"), source_.model.textures.size());
    const tinygltf::Texture& texture = element(source_, source_.model.textures, index, "texture");
    use.image = imageOf(texture, index);
    use.uvSet = uvSetOf(info, index);
    readTransform(member(member(info, "extensions"), "KHR_texture_transform"), use);
    if (texture.sampler >= 0) readSampler(texture.sampler, use);
    return use;
}

int TextureReader::uvSetOf(const Json& info, int texture) const {
    const Json& moved =
        member(member(member(info, "extensions"), "KHR_texture_transform"), "texCoord");
    const Json& set = moved.is_null() ? member(info, "texCoord") : moved;
    if (set.is_null()) return 0;
    const int index = indexOf(set, kLastUvSet);
    if (index < 0) {
        source_.fail(fmt::format("texture {} uses the UV set {}: only 0 to {} can be read", texture,
                                 set.dump().substr(0, 40), kLastUvSet));
    }
    return index;
}

void TextureReader::readSampler(int index, TextureUse& use) const {
    const tinygltf::Sampler& sampler = element(source_, source_.model.samplers, index, "sampler");
    const auto wrap = [](int mode) {
        if (mode == TINYGLTF_TEXTURE_WRAP_CLAMP_TO_EDGE) return Wrap::ClampToEdge;
        return mode == TINYGLTF_TEXTURE_WRAP_MIRRORED_REPEAT ? Wrap::MirroredRepeat : Wrap::Repeat;
    };
    use.wrapS = wrap(sampler.wrapS);
    use.wrapT = wrap(sampler.wrapT);
    if (sampler.magFilter == TINYGLTF_TEXTURE_FILTER_NEAREST) use.magnify = Filter::Nearest;
    use.mipmaps = sampler.minFilter != TINYGLTF_TEXTURE_FILTER_NEAREST &&
                  sampler.minFilter != TINYGLTF_TEXTURE_FILTER_LINEAR;
    const bool nearest = sampler.minFilter == TINYGLTF_TEXTURE_FILTER_NEAREST ||
                         sampler.minFilter == TINYGLTF_TEXTURE_FILTER_NEAREST_MIPMAP_NEAREST ||
                         sampler.minFilter == TINYGLTF_TEXTURE_FILTER_NEAREST_MIPMAP_LINEAR;
    if (nearest) use.minify = Filter::Nearest;
}

/// The scene's image for a texture, decoded at its first use.
int TextureReader::imageOf(const tinygltf::Texture& texture, int textureIndex) {
    int index = texture.source;
    const auto webp = texture.extensions.find("EXT_texture_webp");
    if (webp != texture.extensions.end() && webp->second.Has("source")) {
        index = webp->second.Get("source").GetNumberAsInt();
    }
    if (index < 0) failWithoutImage(texture, textureIndex);
    const auto known = images_.find(index);
    if (known != images_.end()) return known->second;
    const int at = static_cast<int>(scene_.images.size());
    scene_.images.push_back(decode(index));
    images_[index] = at;
    return at;
}

Image TextureReader::decode(int index) const {
    const SourceImage& image = element(source_, source_.images, index, "image");
    if (!image.problem.empty()) {
        source_.fail(fmt::format("the texture \"{}\" {}", image.name, image.problem));
    }
    try {
        return decodeImage(image.bytes, image.name);
    } catch (const Error& error) {
        source_.fail(
            fmt::format("the texture \"{}\" {}: export it again", image.name, error.what()));
    }
}

void TextureReader::failWithoutImage(const tinygltf::Texture& texture, int textureIndex) const {
    const std::string where = fmt::format("texture {} ", textureIndex);
    if (texture.extensions.empty()) source_.fail(where + "names no image: export the file again");
    source_.fail(
        fmt::format("{}is stored for {} alone, which cannot be read: export it as PNG, "
                    "JPEG or WebP",
                    where, texture.extensions.begin()->first));
}

std::optional<TextureUse> TextureReader::readSpare(const Json& info, const char* what,
                                                   const std::string& surface) {
    try {
        return read(info);
    } catch (const Error& error) {
        scene_.warnings.push_back(oneLine(
            fmt::format("{}; so surface {} goes without its {}", error.what(), surface, what)));
        return std::nullopt;
    }
}

}  // namespace tavora::studio
