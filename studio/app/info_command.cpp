#include "studio/app/commands.h"
#include "studio/app/describe.h"
#include "studio/files/standard_streams.h"
#include "studio/scene/gltf/reader.h"
#include "studio/setup/scene_report.h"

namespace tavora::studio {

void showInfo(const InfoRequest& request, Report& report) {
    const Scene scene = readGltf(request.scene, request.reading);
    reportScene(scene, report);
    const nlohmann::ordered_json module = describeModule(request.plugin);
    if (!request.json) return writeOut(sceneText(scene, module));
    const auto keepGoing = nlohmann::ordered_json::error_handler_t::replace;
    writeOut(sceneJson(scene, module).dump(2, ' ', false, keepGoing) + "\n");
}

}  // namespace tavora::studio
