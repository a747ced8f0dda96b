/* The record that activates a "ShaderInterface" class: how the user edits an
 * instance. */
#ifndef HOST_INTERFACE_H
#define HOST_INTERFACE_H

#include "host/types.h"

#define HOST_SHADER_INTERFACE_CLASS "ShaderInterface"

enum { HOST_SHADER_INTERFACE_VERSION = 4 };

typedef struct HostShaderInterface {
    HostInstance instance; /* the host's, not touched by activation */
    HostPanelId panel;     /* a panel for the host to embed, or null */
    /* Opens the settings panel and returns when it is closed; null when the
     * plug-in has no panel to open. Returns null or a static error text.
     * [interface] */
    HostError (*options)(HostInstance instance);
    /* Runs a text command on the instance; null when there are none. [interface] */
    HostError (*command)(HostInstance instance, const char* text);
} HostShaderInterface;

#endif
