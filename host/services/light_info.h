/* Lights and the ambient light. Colours are display-referred, intensity counted in. */
#ifndef HOST_SERVICES_LIGHT_INFO_H
#define HOST_SERVICES_LIGHT_INFO_H

#include "host/types.h"

#define HOST_LIGHT_INFO_SERVICE "LW Light Info 5"

/* Bits of a light's flags. */
enum {
    HOST_LIGHT_LIMITED_RANGE = 1 << 0,
    HOST_LIGHT_NO_DIFFUSE = 1 << 1,
    HOST_LIGHT_NO_SPECULAR = 1 << 2 /* the light makes no highlights */
};

typedef struct HostLightInfo {
    /* Ambient colour at a time in seconds. [any] */
    void (*ambient)(double seconds, double color[3]);
    /* HOST_LIGHT_... bits; 0 for an unknown light. [any] */
    int (*flags)(HostItemId light);
    /* The light's colour at a time in seconds; black for an unknown light. [any] */
    void (*color)(HostItemId light, double seconds, double color[3]);
} HostLightInfo;

#endif
