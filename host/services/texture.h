/* Evaluation of channel textures at a point. */
#ifndef HOST_SERVICES_TEXTURE_H
#define HOST_SERVICES_TEXTURE_H

#include "host/texture_point.h"
#include "host/types.h"

#define HOST_TEXTURE_SERVICE "Texture Functions 3"

/* Layer parameters. */
enum {
    HOST_LAYER_POSITION = 1, /* double[3] */
    HOST_LAYER_SCALE = 2,    /* double[3], per object axis */
    HOST_LAYER_ROTATION = 3  /* double[3], radians */
};

typedef struct HostTextureFunctions {
    /* The first layer, or null for an empty texture. [any] */
    HostTextureLayerId (*firstLayer)(HostTextureId texture);
    /* Writes the parameter's value to `value`; returns 1, or 0 for an unknown
     * layer or parameter (`value` is then left alone). [any] */
    int (*layerParameter)(HostTextureLayerId layer, int parameter, void* value);
    /* The texture's alpha at the point, 0..1, and its colour. [render] */
    double (*evaluate)(HostTextureId texture, const HostTexturePoint* point, double color[3]);
} HostTextureFunctions;

#endif
