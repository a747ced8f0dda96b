/* Mutexes. Each object holds several numbered mutexes, all recursive: a thread
 * that holds one may lock it again. */
#ifndef HOST_SERVICES_MULTITHREADING_H
#define HOST_SERVICES_MULTITHREADING_H

#include "host/types.h"

#define HOST_MULTITHREADING_SERVICE "MultiThreading Utilities 2"

enum { HOST_MUTEXES_PER_OBJECT = 16 };

typedef struct HostMultithreading {
    /* A new object owned by the caller, or null when none can be made. [any] */
    HostMutexId (*create)(void);
    /* Null is ignored. No mutex of the object may be held. [any] */
    void (*destroy)(HostMutexId object);
    /* Locks or unlocks mutex `number` (0 .. HOST_MUTEXES_PER_OBJECT - 1).
     * Returns 1, or 0 for a bad object or number. [any] */
    int (*lock)(HostMutexId object, int number);
    int (*unlock)(HostMutexId object, int number);
} HostMultithreading;

#endif
