#include "studio/setup/scene_report.h"

namespace tavora::studio {

void reportScene(const Scene& scene, Report& report) {
    for (const std::string& warning : scene.warnings)
        report.warning(warning);
    for (const std::string& note : scene.notes)
        report.note(1, note);
}

}  // namespace tavora::studio
