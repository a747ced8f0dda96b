/* Textures on the channels of a surface. */
#ifndef HOST_SERVICES_SURFACE_H
#define HOST_SERVICES_SURFACE_H

#include "host/types.h"

#define HOST_SURFACE_SERVICE "Surface Functions 4"

#define HOST_CHANNEL_BASE_COLOR "BaseColor"
#define HOST_CHANNEL_TRANSLUCENCY "Translucency"

typedef struct HostSurfaceFunctions {
    /* The texture on a channel (HOST_CHANNEL_...), or null. [any] */
    HostTextureId (*channelTexture)(HostSurfaceId surface, const char* channel);
} HostSurfaceFunctions;

#endif
