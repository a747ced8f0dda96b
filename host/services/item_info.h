/* The scene's items, in the host's order. */
#ifndef HOST_SERVICES_ITEM_INFO_H
#define HOST_SERVICES_ITEM_INFO_H

#include "host/types.h"

#define HOST_ITEM_INFO_SERVICE "LW Item Info 5"

typedef struct HostItemInfo {
    /* First item of a type (HOST_ITEM_...) under `parent` (null: the scene), or null. [any] */
    HostItemId (*first)(int itemType, HostItemId parent);
    /* The next item of the same type, or null after the last. [any] */
    HostItemId (*next)(HostItemId item);
    /* UTF-8, unique among lights, owned by the host, valid while the scene is
     * loaded; null for an unknown item. [any] */
    const char* (*name)(HostItemId item);
} HostItemInfo;

#endif
