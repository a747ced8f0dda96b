#pragma once

#include "host/handler.h"
#include "plugin/record/services.h"
#include "plugin/record/shader_instance.h"

namespace tavora {

/// Tells the host that the record changed. [interface]
inline void notifyHost(ShaderInstance* instance) {
    if (lwupdate != nullptr) lwupdate(HOST_SHADER_HANDLER_CLASS, instance);
}

}  // namespace tavora
