/* The host's directories by name. The service is a single function. */
#ifndef HOST_SERVICES_DIRECTORY_INFO_H
#define HOST_SERVICES_DIRECTORY_INFO_H

#include "host/types.h"

#define HOST_DIRECTORY_INFO_SERVICE "Directory Info"
#define HOST_DIRECTORY_SETTINGS "Settings"

/* The path of a named directory without a closing separator, owned by the host
 * and valid until the next call; null when there is none of that name. [interface] */
typedef const char* HostDirectoryInfo(const char* directoryName);

#endif
