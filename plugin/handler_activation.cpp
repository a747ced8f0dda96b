#include "plugin/handler_activation.h"

#include "host/handler.h"
#include "persist/state_block.h"
#include "plugin/description.h"
#include "plugin/instance_creation.h"
#include "plugin/record/instance_life.h"
#include "plugin/record/services.h"
#include "shading/evaluate.h"
#include "shading/render_pass.h"

namespace tavora {

int Handler(int version, HostLookup* lookup, void* classRecord, void* /*serverData*/) {
    if (!acquireServices(lookup)) return HOST_ACTIVATION_NO_SERVICE;
    if (version != HOST_SHADER_HANDLER_VERSION) return HOST_ACTIVATION_BAD_VERSION;

    auto* handler = static_cast<HostShaderHandler*>(classRecord);
    handler->instance->create = Create;
    handler->instance->destroy = Destroy;
    handler->instance->copy = Copy;
    handler->instance->load = Load;
    handler->instance->save = Save;
    handler->instance->descriptionLine = DescLn;
    handler->render->init = Init;
    handler->render->cleanup = Cleanup;
    handler->render->newTime = NewTime;
    handler->evaluate = Evaluate;
    handler->flags = Flags;
    return HOST_ACTIVATION_OK;
}

}  // namespace tavora
