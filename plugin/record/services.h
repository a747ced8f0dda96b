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
#include "host/types.h"

namespace tavora {

/// The host's services, owned by the host and never released. The handler
/// activation writes them, null where the host lacks one, before any other
/// callback can run; from then on they are only read.
///
/// Without `iteminfo` evaluation leaves samples alone and there is no panel;
/// without `lightinfo` the ambient light is black, no light is flagged and no
/// light has a colour of its own. The handler does not activate without the rest.
extern const HostMultithreading* mtutil;
extern const HostItemInfo* iteminfo;
extern const HostLightInfo* lightinfo;
extern const HostMessages* msg;
extern HostDirectoryInfo* dirinfo;
extern const HostFileIo* fiof;
extern HostInstanceUpdate* lwupdate;
extern const HostSurfaceFunctions* surff;
extern const HostTextureFunctions* txfunc;

/// The host's lookup as the interface activation got it; null before that.
extern HostLookup* global;

/// Looks up the nine services above through `lookup` and stores every answer.
/// False when one is missing that the handler cannot work without.
bool acquireServices(HostLookup* lookup);

}  // namespace tavora
