/* Off-screen pictures for panels. Nothing of it is in use: the table only
 * shows that the host offers the service. */
#ifndef HOST_SERVICES_RASTER_H
#define HOST_SERVICES_RASTER_H

#include "host/types.h"

#define HOST_RASTER_SERVICE "RasterServices"

typedef struct HostRasterServices {
    const void* reserved;
} HostRasterServices;

#endif
