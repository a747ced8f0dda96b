/* Files of a plug-in's own, as save-state and load-state records. */
#ifndef HOST_SERVICES_FILE_IO_H
#define HOST_SERVICES_FILE_IO_H

#include "host/state.h"
#include "host/types.h"

#define HOST_FILE_IO_SERVICE "File IO 2"

/* All [interface]. Paths may use ':' as the separator before the last name;
 * the host maps it to its platform's own. Records belong to the caller until
 * it closes them. */
typedef struct HostFileIo {
    /* Null when the file cannot be opened, and for a file that is there but could
     * not be read: what nobody could look at is not replaced. What is written
     * replaces the file at closing, whole or not at all. */
    const HostSaveState* (*openSave)(const char* path, int ioMode);
    void (*closeSave)(const HostSaveState* state);
    /* Null when the file is missing or unreadable. */
    const HostLoadState* (*openLoad)(const char* path, int ioMode);
    void (*closeLoad)(const HostLoadState* state);
} HostFileIo;

#endif
