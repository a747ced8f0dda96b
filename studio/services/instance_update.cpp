#include "studio/services/instance_update.h"

#include <utility>

#include "studio/services/service_tables.h"

namespace tavora::studio {
namespace {

// Render threads make records of their own, which a module reports just the same
// when it has laid the default settings over them: nobody waits for those.
thread_local InstanceListener currentListener;

}  // namespace

void setInstanceListener(InstanceListener listener) {
    currentListener = std::move(listener);
}

void instanceUpdate(const char* className, HostInstance instance) {
    if (currentListener) currentListener(className, instance);
}

}  // namespace tavora::studio
