/* The record that activates a "ShaderHandler" class: callbacks that the host
 * fills in before activation and the plug-in replaces with its own. */
#ifndef HOST_HANDLER_H
#define HOST_HANDLER_H

#include "host/sample.h"
#include "host/state.h"
#include "host/types.h"

#define HOST_SHADER_HANDLER_CLASS "ShaderHandler"

enum { HOST_SHADER_HANDLER_VERSION = 6 };

/* The flag word: what the shader may change in a sample. The host takes back
 * only what the flags name. */
enum {
    HOST_SHADER_COLOR = 1 << 1,
    HOST_SHADER_LUMINOUS = 1 << 2,
    HOST_SHADER_DIFFUSE = 1 << 3,
    HOST_SHADER_SPECULAR = 1 << 4,
    HOST_SHADER_TRANSPARENCY = 1 << 6,
    HOST_SHADER_RAYTRACE = 1 << 10 /* the shader calls the sample's ray-shading callback */
};

/* Life of an instance. [interface], except that a host may run them on another
 * thread as long as it runs none of the module's other callbacks meanwhile. */
typedef struct HostInstanceCallbacks {
    void* privateData; /* the host's, handed to `create` */
    /* A new instance for the surface `context`, owned by the host until
     * `destroy`; null and a text in `*error` when there is no memory. */
    HostInstance (*create)(void* privateData, HostSurfaceId context, HostError* error);
    void (*destroy)(HostInstance instance);
    HostError (*copy)(HostInstance to, HostInstance from);
    HostError (*load)(HostInstance instance, const HostLoadState* state);
    HostError (*save)(HostInstance instance, const HostSaveState* state);
    /* One line for the host's shader list; valid as long as the instance. */
    const char* (*descriptionLine)(HostInstance instance);
} HostInstanceCallbacks;

/* Scene items that an instance refers to by identity. [interface] */
typedef struct HostItemCallbacks {
    const HostItemId* (*itemsUsed)(HostInstance instance);
    void (*itemsRenumbered)(HostInstance instance, const HostItemId* pairs);
} HostItemCallbacks;

/* The render pass around the samples. One thread at a time, never while an
 * evaluation of the same module copy runs. */
typedef struct HostRenderCallbacks {
    HostError (*init)(HostInstance instance, int renderMode);
    void (*cleanup)(HostInstance instance);
    HostError (*newTime)(HostInstance instance, int frame, double seconds);
} HostRenderCallbacks;

typedef struct HostShaderHandler {
    HostInstanceCallbacks* instance;
    HostItemCallbacks* item;
    HostRenderCallbacks* render;
    /* Shades one sample in place. [render] between `init` and `cleanup`. */
    void (*evaluate)(HostInstance instance, HostSample* sample);
    /* The flag word, as of now. [interface] or between passes. */
    unsigned int (*flags)(HostInstance instance);
} HostShaderHandler;

#endif
