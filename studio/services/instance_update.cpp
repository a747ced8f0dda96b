#include "studio/services/instance_update.h"

#include <utility>

#include "studio/services/service_tables.h"

namespace tavora::studio {
namespace {

// Per thread, because modules also report instances on render threads, when they apply
// default settings to new ones, and those reports have no listener.
thread_local InstanceListener currentListener;

}  // namespace

void setInstanceListener(InstanceListener listener) {
    currentListener = std::move(listener);
}

void instanceUpdate(const char* className, HostInstance instance) {
    if (currentListener) currentListener(className, instance);
}

}  // namespace tavora::studio
