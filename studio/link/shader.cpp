#include "studio/link/shader.h"

#include <fmt/format.h>
#include <utility>

#include "studio/util/error.h"

namespace tavora::studio {
namespace {

void check(HostError error) {
    if (error != nullptr)
        throw Error(Fault::Module, fmt::format("the plug-in module says: {}", error));
}

}  // namespace

Shader::Shader(const ModuleCopy& module, HostSurfaceId surface)
    : handler_(&module.handler()), instance_(nullptr) {
    HostError error = nullptr;
    instance_ = handler_->instance->create(handler_->instance->privateData, surface, &error);
    if (instance_ == nullptr) {
        check(error != nullptr ? error : "no shader could be created, and no reason was given");
    }
}

Shader::Shader(Shader&& other) noexcept
    : handler_(other.handler_), instance_(std::exchange(other.instance_, nullptr)) {}

Shader::~Shader() {
    if (instance_ != nullptr) handler_->instance->destroy(instance_);
}

void Shader::load(const StateBlock& block) {
    const BlockReader reader(block);
    check(handler_->instance->load(instance_, reader.record()));
}

StateBlock Shader::save() const {
    StateBlock block;
    const BlockWriter writer(block);
    check(handler_->instance->save(instance_, writer.record()));
    return block;
}

unsigned Shader::flags() const {
    return handler_->flags(instance_);
}

std::string Shader::descriptionLine() const {
    if (handler_->instance->descriptionLine == nullptr) return {};
    const char* line = handler_->instance->descriptionLine(instance_);
    return line == nullptr ? std::string() : line;
}

void Shader::beginPass(int renderMode, int frame, double seconds) {
    const HostRenderCallbacks& passes = *handler_->render;
    if (passes.init != nullptr) check(passes.init(instance_, renderMode));
    if (passes.newTime != nullptr) check(passes.newTime(instance_, frame, seconds));
}

void Shader::endPass() {
    if (handler_->render->cleanup != nullptr) handler_->render->cleanup(instance_);
}

StateBlock newShaderSettings(const ModuleCopy& module) {
    return Shader(module, nullptr).save();
}

}  // namespace tavora::studio
