#pragma once

#include <optional>

#include "host/types.h"
#include "studio/scene/scene.h"
#include "studio/services/scene_index.h"

namespace tavora::studio {

enum class Channel { BaseColor, Translucency };

/// The texture on a channel of a surface.
struct ChannelTexture {
    const Surface* surface = nullptr;  ///< null for an unknown identity
    Channel channel = Channel::BaseColor;

    /// The texture's place in an image; none when the channel has no texture.
    const std::optional<TextureUse>& use() const;
};

/// Identity of the texture on a channel of the surface at `surface` in the scene.
HostTextureId textureId(std::size_t surface, Channel channel);

ChannelTexture findTexture(const Scene& scene, HostTextureId id);

}  // namespace tavora::studio
