#include "shading/render_pass.h"

#include "plugin/record/services.h"
#include "plugin/record/shader_instance.h"
#include "plugin/record/zone.h"

namespace tavora {

HostMutexId mtid = nullptr;
double currentTime = 0.0;

namespace {

void findTransparency(ShaderInstance* record) {
    record->transparencyUsed = 0;
    Zone*& cursor = record->zoneCursor;
    for (cursor = record->zoneList; cursor != nullptr; cursor = cursor->next) {
        if (static_cast<double>(cursor->trans) > 1e-06) record->transparencyUsed = 1;
    }
    cursor = record->zoneList;
}

void destroyMutex() {
    if (mtid == nullptr) return;
    mtutil->destroy(mtid);
    mtid = nullptr;
}

}  // namespace

HostError Init(HostInstance instance, int /*renderMode*/) {
    findTransparency(static_cast<ShaderInstance*>(instance));
    destroyMutex();
    mtid = mtutil->create();
    if (mtid == nullptr) msg->error("Cound not create mutex", nullptr);
    return nullptr;
}

HostError NewTime(HostInstance /*instance*/, int /*frame*/, double seconds) {
    currentTime = seconds;
    return nullptr;
}

void Cleanup(HostInstance /*instance*/) {
    destroyMutex();
}

}  // namespace tavora
