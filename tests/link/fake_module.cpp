// A module with one fault, or none: built once for each by CMake. Its shader keeps
// one number, which passes change, counts instances in globals, and says so in its
// description line.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string_view>

#include "host/handler.h"
#include "host/interface.h"
#include "host/module.h"
#include "host/services/messages.h"

extern "C" void nobodyHasThis();

namespace {

constexpr std::string_view kFault = FAULT;

int instances = 0;
int made = 0;

struct Instance {
    std::int32_t number = 7;
    char line[40] = "";
};

std::int32_t& numberOf(HostInstance instance) {
    return static_cast<Instance*>(instance)->number;
}

HostInstance create(void*, HostSurfaceId, HostError* error) {
    if (std::getenv("FAKE_MODULE_REFUSES") != nullptr) {
        *error = "no more shaders today";
        return nullptr;
    }
    ++instances;
    ++made;
    return new Instance;
}

void destroy(HostInstance instance) {
    --instances;
    delete static_cast<Instance*>(instance);
}

HostError load(HostInstance instance, const HostLoadState* state) {
    std::int32_t number = 0;
    if (state->readInt(state->data, &number, 1) != 1) return "a number is missing";
    numberOf(instance) = number;
    return nullptr;
}

HostError save(HostInstance instance, const HostSaveState* state) {
    state->writeInt(state->data, &numberOf(instance), 1);
    return nullptr;
}

const char* descriptionLine(HostInstance instance) {
    auto* self = static_cast<Instance*>(instance);
    std::snprintf(self->line, sizeof self->line, "number %d, %d of %d", self->number, instances,
                  made);
    return self->line;
}

HostError init(HostInstance, int renderMode) {
    return renderMode < 0 ? "no such mode" : nullptr;
}

HostError newTime(HostInstance instance, int frame, double seconds) {
    numberOf(instance) = frame + static_cast<int>(seconds);
    return nullptr;
}

void cleanup(HostInstance instance) {
    numberOf(instance) = 0;
}

void evaluate(HostInstance, HostSample*) {}

unsigned flags(HostInstance) {
    return HOST_SHADER_COLOR;
}

int activateHandler(int version, HostLookup* lookup, void* record, void*) {
    for (const char* wanted :
         {HOST_MESSAGES_SERVICE, "Coffee Machine", "Tea Kettle", "Coffee Machine"})
        lookup(wanted, 0);
    if (kFault == "wants_services") return HOST_ACTIVATION_NO_SERVICE;
    if (kFault == "odd_result") return 5;
    if (kFault == "wants_other_version" || version != HOST_SHADER_HANDLER_VERSION)
        return HOST_ACTIVATION_BAD_VERSION;
    auto* handler = static_cast<HostShaderHandler*>(record);
    *handler->instance = {nullptr, create, destroy, nullptr, load, save, descriptionLine};
    *handler->render = {init, cleanup, newTime};
    handler->evaluate = evaluate;
    handler->flags = kFault == "no_flags" ? nullptr : flags;
    return HOST_ACTIVATION_OK;
}

int activateInterface(int version, HostLookup*, void*, void*) {
    return version == HOST_SHADER_INTERFACE_VERSION ? HOST_ACTIVATION_OK
                                                    : HOST_ACTIVATION_BAD_VERSION;
}

int activateOtherInterface(int, HostLookup*, void* record, void*) {
    static_cast<HostShaderInterface*>(record)->options = [](HostInstance) -> HostError {
        return nullptr;
    };
    return HOST_ACTIVATION_OK;
}

void* startup() {
    if constexpr (kFault == "unresolved") nobodyHasThis();
    return kFault == "no_start" ? nullptr : &made;
}

void shutdown(void*) {
    setenv("FAKE_MODULE_ENDED", "1", 1);
}

const char* const kHandler = kFault == "no_class" ? "Kettle" : HOST_SHADER_HANDLER_CLASS;
const HostServerRecord servers[] = {
    {kHandler, "FAKE", activateHandler, nullptr},
    {kHandler, "OTHER", activateHandler, nullptr},
    {HOST_SHADER_INTERFACE_CLASS, "OTHER", activateOtherInterface, nullptr},
    {HOST_SHADER_INTERFACE_CLASS, "FAKE", activateInterface, nullptr},
    {nullptr, nullptr, nullptr, nullptr},
};

}  // namespace

extern "C" [[gnu::visibility("default")]] const HostModuleDescriptor _mod_descrip;
const HostModuleDescriptor _mod_descrip = {kFault == "wrong_sync" ? 0x12345678 : HOST_MODULE_SYNC,
                                           kFault == "wrong_version" ? 9 : HOST_MODULE_VERSION,
                                           kFault == "wrong_machine" ? 7 : HOST_MODULE_MACHINE,
                                           startup,
                                           shutdown,
                                           kFault == "no_servers" ? nullptr : servers};
