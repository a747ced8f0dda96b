// A module with one fault, or none: built once for each by CMake, which sets
// the macros. Its shader keeps one number, counts instances in a global, and
// says so in its description line.

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "host/handler.h"
#include "host/interface.h"
#include "host/module.h"
#include "host/services/messages.h"

#ifndef FAKE_SYNC
#define FAKE_SYNC HOST_MODULE_SYNC
#endif
#ifndef FAKE_VERSION
#define FAKE_VERSION HOST_MODULE_VERSION
#endif
#ifndef FAKE_CLASS
#define FAKE_CLASS HOST_SHADER_HANDLER_CLASS
#endif
#ifndef FAKE_RESULT
#define FAKE_RESULT HOST_ACTIVATION_OK
#endif
#ifndef FAKE_SYMBOL
#define FAKE_SYMBOL _mod_descrip
#endif
#ifndef FAKE_TOKEN
#define FAKE_TOKEN 1
#endif

#ifdef FAKE_NEEDS
extern "C" void FAKE_NEEDS();
#endif

namespace {

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
    if (FAKE_RESULT != HOST_ACTIVATION_OK) return FAKE_RESULT;
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
#ifdef FAKE_NEEDS
    FAKE_NEEDS();
#endif
    return reinterpret_cast<void*>(std::uintptr_t{FAKE_TOKEN});
}

void shutdown(void*) {
    setenv("FAKE_MODULE_ENDED", "1", 1);
}

const HostServerRecord servers[] = {
    {FAKE_CLASS, "FAKE", activateHandler, nullptr},
    {HOST_SHADER_INTERFACE_CLASS, "FAKE", activateInterface, nullptr},
    {nullptr, nullptr, nullptr, nullptr},
};

}  // namespace

extern "C" [[gnu::visibility("default")]] const HostModuleDescriptor FAKE_SYMBOL;
const HostModuleDescriptor FAKE_SYMBOL = {FAKE_SYNC, FAKE_VERSION, HOST_MODULE_MACHINE,
                                          startup,   shutdown,     servers};
