/* How a plug-in tells the host that it changed one of its instances. The
 * service is a single function. */
#ifndef HOST_SERVICES_INSTANCE_UPDATE_H
#define HOST_SERVICES_INSTANCE_UPDATE_H

#include "host/types.h"

#define HOST_INSTANCE_UPDATE_SERVICE "Instance Update"

/* `className` is the handler class of the instance. [interface] */
typedef void HostInstanceUpdate(const char* className, HostInstance instance);

#endif
