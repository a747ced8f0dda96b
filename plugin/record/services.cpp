#include "plugin/record/services.h"

namespace tavora {

const HostMultithreading* mtutil = nullptr;
const HostItemInfo* iteminfo = nullptr;
const HostLightInfo* lightinfo = nullptr;
const HostMessages* msg = nullptr;
HostDirectoryInfo* dirinfo = nullptr;
const HostFileIo* fiof = nullptr;
HostInstanceUpdate* lwupdate = nullptr;
const HostSurfaceFunctions* surff = nullptr;
const HostTextureFunctions* txfunc = nullptr;

HostLookup* global = nullptr;

namespace {

template <class Service>
void acquire(HostLookup* lookup, const char* name, Service*& service) {
    service = reinterpret_cast<Service*>(lookup(name, HOST_USE_TRANSIENT));
}

}  // namespace

bool acquireServices(HostLookup* lookup) {
    acquire(lookup, HOST_MULTITHREADING_SERVICE, mtutil);
    acquire(lookup, HOST_ITEM_INFO_SERVICE, iteminfo);
    acquire(lookup, HOST_LIGHT_INFO_SERVICE, lightinfo);
    acquire(lookup, HOST_MESSAGES_SERVICE, msg);
    acquire(lookup, HOST_DIRECTORY_INFO_SERVICE, dirinfo);
    acquire(lookup, HOST_FILE_IO_SERVICE, fiof);
    acquire(lookup, HOST_INSTANCE_UPDATE_SERVICE, lwupdate);
    acquire(lookup, HOST_SURFACE_SERVICE, surff);
    acquire(lookup, HOST_TEXTURE_SERVICE, txfunc);
    return mtutil != nullptr && msg != nullptr && dirinfo != nullptr && fiof != nullptr &&
           lwupdate != nullptr && surff != nullptr && txfunc != nullptr;
}

}  // namespace tavora
