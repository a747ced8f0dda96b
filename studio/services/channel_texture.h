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

    /// How the channel reads its image; empty when it has no texture. Not for an unknown
    /// identity.
    const std::optional<TextureUse>& use() const;
};

/// The identity of the texture on a channel of surface `surface`, an index into
/// Scene::surfaces. Never null.
HostTextureId textureId(std::size_t surface, Channel channel);

/// The texture that has an identity of textureId(); with a null `surface` for any other.
ChannelTexture findTexture(const Scene& scene, HostTextureId id);

}  // namespace tavora::studio
