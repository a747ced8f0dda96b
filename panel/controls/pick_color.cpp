#include "panel/controls/pick_color.h"

#include "panel/controls/controls.h"

namespace tavora {

void pickColor(const char* title, float color[3]) {
    HostColorPick request{0, title, color[0], color[1], color[2], nullptr, nullptr};
    if (colorpick(HOST_COLOR_PICKER_VERSION, &request) != 0 || request.result <= 0) return;
    color[0] = request.red;
    color[1] = request.green;
    color[2] = request.blue;
}

}  // namespace tavora
