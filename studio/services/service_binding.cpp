#include "studio/services/service_binding.h"

namespace tavora::studio {
namespace {

thread_local const ServiceBinding* bound = nullptr;

}  // namespace

ServiceBinding::ServiceBinding(const SceneIndex& scene, const LightRig& lights)
    : scene_(&scene), lights_(&lights), before_(bound) {
    bound = this;
}

ServiceBinding::~ServiceBinding() {
    bound = before_;
}

const ServiceBinding* ServiceBinding::current() {
    return bound;
}

}  // namespace tavora::studio
