#include "studio/link/module_copy.h"

#include <fmt/format.h>

#include "studio/link/activation.h"
#include "studio/util/error.h"

namespace tavora::studio {

ModuleCopy::ModuleCopy(const std::filesystem::path& file, HostLookup* lookup,
                       const std::string& server)
    : image_(file), lookup_(lookup) {
    handler_.instance = &instanceCallbacks_;
    handler_.item = &itemCallbacks_;
    handler_.render = &renderCallbacks_;
    start();
    try {
        activateHandler(server);
        checkHandler();
    } catch (...) {
        descriptor().shutdown(token_);
        throw;
    }
}

ModuleCopy::~ModuleCopy() {
    descriptor().shutdown(token_);
}

HostShaderInterface ModuleCopy::activateInterface(HostInstance instance) const {
    const HostServerRecord& record =
        findServer(descriptor(), file(), HOST_SHADER_INTERFACE_CLASS, server_);
    HostShaderInterface result{};
    result.instance = instance;
    activate(record, HOST_SHADER_INTERFACE_VERSION, lookup_, &result, file());
    return result;
}

void ModuleCopy::start() {
    token_ = descriptor().startup();
    if (token_ == nullptr) {
        throw Error(Fault::Module,
                    fmt::format("{}: the plug-in module failed to start", file().string()));
    }
}

void ModuleCopy::activateHandler(const std::string& server) {
    const HostServerRecord& record =
        findServer(descriptor(), file(), HOST_SHADER_HANDLER_CLASS, server);
    activate(record, HOST_SHADER_HANDLER_VERSION, lookup_, &handler_, file());
    server_ = record.serverName;
}

void ModuleCopy::checkHandler() const {
    const HostInstanceCallbacks& life = instanceCallbacks_;
    const bool complete = handler_.instance == &instanceCallbacks_ &&
                          handler_.render == &renderCallbacks_ && life.create && life.destroy &&
                          life.load && life.save && handler_.evaluate && handler_.flags;
    if (!complete) {
        throw Error(Fault::Module,
                    fmt::format("{}: {} \"{}\" activated without all the functions of its class",
                                file().string(), HOST_SHADER_HANDLER_CLASS, server_));
    }
}

}  // namespace tavora::studio
