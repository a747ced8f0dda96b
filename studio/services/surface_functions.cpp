#include <cstring>

#include "studio/services/channel_texture.h"
#include "studio/services/service_binding.h"
#include "studio/services/service_tables.h"

namespace tavora::studio {
namespace {

std::optional<Channel> channelOf(const char* name) {
    if (name == nullptr) return std::nullopt;
    if (std::strcmp(name, HOST_CHANNEL_BASE_COLOR) == 0) return Channel::BaseColor;
    if (std::strcmp(name, HOST_CHANNEL_TRANSLUCENCY) == 0) return Channel::Translucency;
    return std::nullopt;
}

HostTextureId channelTexture(HostSurfaceId surface, const char* name) {
    const ServiceBinding* binding = ServiceBinding::current();
    const std::optional<Channel> channel = channelOf(name);
    if (binding == nullptr || !channel) return nullptr;
    const std::optional<std::size_t> index = binding->scene().surfaceIndex(surface);
    if (!index) return nullptr;
    const ChannelTexture texture{&binding->scene().scene().surfaces[*index], *channel};
    if (!texture.use() || binding->scene().pyramid(*texture.use()) == nullptr) return nullptr;
    return textureId(*index, *channel);
}

}  // namespace

const HostSurfaceFunctions kSurfaceFunctions = {channelTexture};

}  // namespace tavora::studio
