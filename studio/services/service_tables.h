#pragma once

#include "host/services/directory_info.h"
#include "host/services/file_io.h"
#include "host/services/instance_update.h"
#include "host/services/item_info.h"
#include "host/services/light_info.h"
#include "host/services/messages.h"
#include "host/services/multithreading.h"
#include "host/services/surface.h"
#include "host/services/texture.h"

/// The services in the form that modules get, one source file for each. Immutable. Services
/// about a scene refer to the ServiceBinding of the calling thread, and to an empty scene when
/// there is none.
namespace tavora::studio {

extern const HostMultithreading kMultithreading;
extern const HostItemInfo kItemInfo;
extern const HostLightInfo kLightInfo;
extern const HostMessages kMessages;
extern const HostFileIo kFileIo;
extern const HostSurfaceFunctions kSurfaceFunctions;
extern const HostTextureFunctions kTextureFunctions;
HostDirectoryInfo directoryInfo;
HostInstanceUpdate instanceUpdate;

}  // namespace tavora::studio
