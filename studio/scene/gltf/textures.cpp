#include "studio/scene/gltf/textures.h"

#include <array>
#include <fmt/format.h>

#include "studio/scene/image/image_decoder.h"
#include "studio/util/error.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

constexpr int kLastUvSet = 3;

Wrap wrapOf(gltf::SamplerWrap wrap) {
    if (wrap == gltf::SamplerWrap::ClampToEdge) return Wrap::ClampToEdge;
    return wrap == gltf::SamplerWrap::MirroredRepeat ? Wrap::MirroredRepeat : Wrap::Repeat;
}

void readSampler(const gltf::Sampler& sampler, TextureUse& use) {
    using gltf::SamplerFilter;
    use.wrapS = wrapOf(sampler.wrapS);
    use.wrapT = wrapOf(sampler.wrapT);
    if (sampler.magFilter == SamplerFilter::Nearest) use.magnify = Filter::Nearest;
    use.mipmaps =
        sampler.minFilter != SamplerFilter::Nearest && sampler.minFilter != SamplerFilter::Linear;
    const bool nearest = sampler.minFilter == SamplerFilter::Nearest ||
                         sampler.minFilter == SamplerFilter::NearestMipmapNearest ||
                         sampler.minFilter == SamplerFilter::NearestMipmapLinear;
    if (nearest) use.minify = Filter::Nearest;
}

Imath::V2f vectorOf(const std::array<double, 2>& values) {
    return {static_cast<float>(values[0]), static_cast<float>(values[1])};
}

}  // namespace

void setTransform(const gltf::TextureInfo& info, TextureUse& use) {
    use.offset = vectorOf(info.offset);
    use.scale = vectorOf(info.scale);
    use.rotation = static_cast<float>(info.rotation);
}

std::optional<TextureUse> TextureReader::read(const std::optional<gltf::TextureInfo>& info) {
    if (!info) return std::nullopt;
    const gltf::Texture& texture = gltf::at(source_.document.textures, info->index);
    if (!texture.hasImage()) {
        if (texture.extensions.names.empty()) return std::nullopt;
        failUnsupported(texture, info->index);
    }
    checkUvSet(*info);
    TextureUse use;
    use.image = imageOf(texture.image());
    use.uvSet = info->texCoord;
    setTransform(*info, use);
    if (texture.sampler != gltf::kNone)
        readSampler(gltf::at(source_.document.samplers, texture.sampler), use);
    return use;
}

void TextureReader::checkUvSet(const gltf::TextureInfo& info) const {
    if (info.texCoord <= kLastUvSet) return;
    source_.fail(fmt::format("texture {} uses the UV set {}: only 0 to {} can be read", info.index,
                             info.texCoord, kLastUvSet));
}

/// The index in the scene of an image of the file, which is decoded at its first use.
int TextureReader::imageOf(int index) {
    const SourceImage& image = gltf::at(source_.images, index);
    if (!image.problem.empty()) {
        source_.fail(fmt::format("the texture \"{}\" {}", shortened(image.name), image.problem));
    }
    const auto key = std::make_pair(image.bytes.data(), image.bytes.size());
    const auto found = images_.find(key);
    if (found != images_.end()) return found->second;
    const int sceneIndex = static_cast<int>(scene_.images.size());
    scene_.images.push_back(decode(image));
    images_[key] = sceneIndex;
    return sceneIndex;
}

Image TextureReader::decode(const SourceImage& image) const {
    try {
        return decodeImage(image.bytes, image.name, *source_.memory);
    } catch (const Error& error) {
        source_.fail(fmt::format("the texture \"{}\" {}: export it again", shortened(image.name),
                                 error.what()));
    }
}

void TextureReader::failUnsupported(const gltf::Texture& texture, int index) const {
    source_.fail(
        fmt::format("texture {} is stored for {} alone, which cannot be read: export it as PNG, "
                    "JPEG or WebP",
                    index, shortened(texture.extensions.names.front())));
}

std::optional<TextureUse> TextureReader::readOptional(const gltf::OptionalTexture& spare,
                                                      const char* what,
                                                      const std::string& surface) {
    std::string problem = spare.problem;
    try {
        if (problem.empty()) return read(spare.info);
    } catch (const Error& error) {
        problem = error.what();
    }
    scene_.warnings.push_back(oneLine(
        fmt::format("{}; so surface {} goes without its {}", problem, shortened(surface), what)));
    return std::nullopt;
}

}  // namespace tavora::studio
