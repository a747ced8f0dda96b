#include "plugin/instance_creation.h"

#include "panel/default_settings_event.h"
#include "plugin/record/instance_life.h"
#include "zones/preview_grid.h"

namespace tavora {

HostInstance Create(void* /*privateData*/, HostSurfaceId context, HostError* error) {
    ShaderInstance* record = createRecord(context);
    if (record == nullptr) {
        if (error != nullptr) *error = "Tavora: not enough memory for the settings of a surface";
        return nullptr;
    }
    cb_getDefault(nullptr, record);
    fillPreviewGrid();
    return record;
}

}  // namespace tavora
