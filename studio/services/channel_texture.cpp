#include "studio/services/channel_texture.h"

#include <bit>

namespace tavora::studio {
namespace {

constexpr std::uintptr_t kChannels = 2;

}  // namespace

const std::optional<TextureUse>& ChannelTexture::use() const {
    return channel == Channel::BaseColor ? surface->baseColorTexture : surface->translucencyTexture;
}

HostTextureId textureId(std::size_t surface, Channel channel) {
    // One more than the texture's number, so that no identity is null.
    return std::bit_cast<HostTextureId>(surface * kChannels + static_cast<std::uintptr_t>(channel) +
                                        1);
}

ChannelTexture findTexture(const Scene& scene, HostTextureId id) {
    const std::uintptr_t number = reinterpret_cast<std::uintptr_t>(id) - 1;  // wraps for null
    const std::uintptr_t surface = number / kChannels;
    if (surface >= scene.surfaces.size()) return {};
    return {&scene.surfaces[surface], static_cast<Channel>(number % kChannels)};
}

}  // namespace tavora::studio
