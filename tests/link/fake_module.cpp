// A module with one fault, named by FAKE_FAULT, or none: built once for each by
// CMake. Its shader keeps one number, counts instances in a global, and says so
// in its description line.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "host/handler.h"
#include "host/interface.h"
#include "host/module.h"
#include "host/services/messages.h"

namespace {

constexpr std::string_view fault = FAKE_FAULT;

/// `odd` in the module that has this fault.
template <class Value>
constexpr Value unless(std::string_view name, Value good, Value odd) {
    return fault == name ? odd : good;
}


int instances = 0;
const HostMessages* messages = nullptr;

struct Instance {
    std::int32_t number = 7;
    char line[40] = "";
};

HostInstance create(void*, HostSurfaceId, HostError* error) {
    if (std::getenv("FAKE_MODULE_REFUSES") != nullptr) {
        *error = "no more shaders today";
        return nullptr;
    }
    ++instances;
    return new Instance;
}

void destroy(HostInstance instance) {
    --instances;
    delete static_cast<Instance*>(instance);
}

HostError load(HostInstance instance, const HostLoadState* state) {
    std::int32_t number = 0;
    if (state->readInt(state->data, &number, 1) != 1) return "a number is missing";
    static_cast<Instance*>(instance)->number = number;
    return nullptr;
}

HostError save(HostInstance instance, const HostSaveState* state) {
    state->writeInt(state->data, &static_cast<Instance*>(instance)->number, 1);
    return nullptr;
}

const char* descriptionLine(HostInstance instance) {
    auto* self = static_cast<Instance*>(instance);
    std::snprintf(self->line, sizeof self->line, "number %d of %d", self->number, instances);
    return self->line;
}

void evaluate(HostInstance, HostSample*) {}

unsigned flags(HostInstance) {
    return HOST_SHADER_COLOR;
}

int activateHandler(int version, HostLookup* lookup, void* record, void*) {
    messages = static_cast<const HostMessages*>(lookup(HOST_MESSAGES_SERVICE, 0));
    lookup("Coffee Machine", 0);
    lookup("Tea Kettle", 0);
    if (fault == "wants_other_version") return HOST_ACTIVATION_BAD_VERSION;
    if (fault == "wants_services") return HOST_ACTIVATION_BAD_LOOKUP;
    if (fault == "odd_result") return 5;
    if (version != HOST_SHADER_HANDLER_VERSION) return HOST_ACTIVATION_BAD_VERSION;
    auto* handler = static_cast<HostShaderHandler*>(record);
    *handler->instance = {nullptr, create, destroy, nullptr, load, save, descriptionLine};
    handler->evaluate = evaluate;
    handler->flags = flags;
    return HOST_ACTIVATION_OK;
}

int activateInterface(int version, HostLookup*, void* record, void*) {
    if (version != HOST_SHADER_INTERFACE_VERSION) return HOST_ACTIVATION_BAD_VERSION;
    static_cast<HostShaderInterface*>(record)->options = nullptr;
    return HOST_ACTIVATION_OK;
}

void* startup() {
    return reinterpret_cast<void*>(std::uintptr_t{fault != "no_start"});
}

void shutdown(void*) {}

const HostServerRecord servers[] = {
    {unless("no_class", HOST_SHADER_HANDLER_CLASS, "Kettle"), "FAKE", activateHandler, nullptr},
    {HOST_SHADER_INTERFACE_CLASS, "FAKE", activateInterface, nullptr},
    {nullptr, nullptr, nullptr, nullptr},
};

}  // namespace

#ifdef FAKE_SYMBOL
#define _mod_descrip FAKE_SYMBOL
#endif
extern "C" [[gnu::visibility("default")]] const HostModuleDescriptor _mod_descrip;
const HostModuleDescriptor _mod_descrip = {unless<unsigned>("wrong_sync", HOST_MODULE_SYNC, 0x12345678),
   unless<unsigned>("wrong_version", HOST_MODULE_VERSION, 9), HOST_MODULE_MACHINE, startup, shutdown, servers};
