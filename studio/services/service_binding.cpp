#include "studio/services/service_binding.h"

namespace tavora::studio {

ServiceBinding::ServiceBinding(const SceneIndex& scene, const LightSet& lights)
    : scene_(&scene), lights_(&lights), before_(bound) {
    bound = this;
}

ServiceBinding::~ServiceBinding() {
    bound = before_;
}

}  // namespace tavora::studio
