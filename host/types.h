/* Identities and small value types that the host and its plug-ins exchange.
 *
 * Every header of this folder compiles alone as C11 and as C++20 and holds no
 * logic. The comment of each function pointer says which thread calls it:
 *   [interface] the host's interface thread,
 *   [render]    any render thread, several at once unless said otherwise,
 *   [any]       any thread.
 */
#ifndef HOST_TYPES_H
#define HOST_TYPES_H

#include <assert.h> /* static_assert in C11 */
#include <stddef.h>
#include <stdint.h>

/* All identities are one machine word, owned by the host, and never
 * dereferenced by a plug-in. Null stands for "none". */
typedef struct HostItem* HostItemId;       /* an object, light or camera of the scene */
typedef struct HostSurface* HostSurfaceId; /* a surface (a set of material channels) */
typedef struct HostTexture* HostTextureId; /* the texture on one surface channel */
typedef struct HostTextureLayer* HostTextureLayerId;
typedef struct HostPoint* HostPointId;     /* a mesh vertex */
typedef struct HostPolygon* HostPolygonId; /* a mesh polygon */
typedef struct HostMutex* HostMutexId;     /* a set of numbered mutexes */
typedef struct HostPanel* HostPanelId;
typedef struct HostControl* HostControlId;

/* A plug-in's own record for one surface; opaque to the host. */
typedef void* HostInstance;

/* A static text that says what failed, or null for success. Never freed. */
typedef const char* HostError;

/* The host's lookup of services by name. Returns the service's function table
 * (or, where the service is a single function, that function's address), owned
 * by the host and valid until it exits, or null when the host has no such
 * service. [interface] during activation, later from the thread that the
 * calling callback runs on. */
typedef void* HostLookup(const char* serviceName, int useMode);

enum {
    HOST_USE_TRANSIENT = 0 /* the use mode of every lookup: nothing to release */
};

/* Item type codes of the item-information service. */
enum { HOST_ITEM_OBJECT = 0, HOST_ITEM_LIGHT = 1, HOST_ITEM_CAMERA = 2 };

/* Byte offsets of records are part of the contract for the 32-bit layout, in
 * which doubles are packed on 4-byte boundaries. */
#if UINTPTR_MAX == 0xffffffffu
#define HOST_LAYOUT_32 1
#define HOST_ASSERT_OFFSET_32(record, field, offset) \
    static_assert(offsetof(record, field) == (offset), #record "." #field " is misplaced")
#define HOST_ASSERT_SIZE_32(record, size) \
    static_assert(sizeof(record) == (size), #record " has the wrong size")
#else
#define HOST_LAYOUT_32 0
#define HOST_ASSERT_OFFSET_32(record, field, offset) \
    static_assert((offset) >= 0, "offsets are fixed for 32-bit builds only")
#define HOST_ASSERT_SIZE_32(record, size) \
    static_assert((size) > 0, "sizes are fixed for 32-bit builds only")
#endif

#endif
