/* How a host finds the plug-in classes of a loadable module.
 *
 * A module exports one symbol, `_mod_descrip`, a HostModuleDescriptor. The host
 * checks its three numbers, calls `startup` once, activates the classes it
 * wants from `servers`, and calls `shutdown` with start-up's token at the end. */
#ifndef HOST_MODULE_H
#define HOST_MODULE_H

#include "host/types.h"

enum {
    HOST_MODULE_SYNC = 0x04121994, /* proves that the symbol is a descriptor */
    HOST_MODULE_VERSION = 3,
    HOST_MODULE_MACHINE = 0x400
};

#define HOST_MODULE_SYMBOL "_mod_descrip"

/* Results of an activation. */
enum { HOST_ACTIVATION_OK = 0, HOST_ACTIVATION_BAD_VERSION = 1, HOST_ACTIVATION_NO_SERVICE = 2 };

/* Activates one plug-in class: fills `classRecord` (its type depends on the
 * class) for the class version that the host offers. Returns one of the results
 * above; on any but HOST_ACTIVATION_OK the record is unusable. [interface],
 * never while another callback of the module runs. */
typedef int HostActivation(int version, HostLookup* lookup, void* classRecord, void* serverData);

/* One plug-in class under one name; the list ends with a record of four nulls. */
typedef struct HostServerRecord {
    const char* className;
    const char* serverName;
    HostActivation* activate;
    const void* tagInfo;
} HostServerRecord;

typedef struct HostModuleDescriptor {
    uintptr_t sync; /* one machine word each */
    uintptr_t version;
    uintptr_t machine;
    void* (*startup)(void);          /* [interface] a non-null token, null on failure */
    void (*shutdown)(void* token);   /* [interface] */
    const HostServerRecord* servers; /* owned by the module */
} HostModuleDescriptor;

HOST_ASSERT_SIZE_32(HostServerRecord, 16);
HOST_ASSERT_SIZE_32(HostModuleDescriptor, 24);

#endif
