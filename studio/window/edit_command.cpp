#include "studio/window/application.h"
#include "studio/window/commands.h"
#include "studio/window/edit_window.h"

namespace tavora::studio {
namespace {

/// Leaves 960 x 540 for the picture.
constexpr QSize kWindowSize(1240, 640);

}  // namespace

void edit(const EditRequest& request, Report& report) {
    const auto application = startApplication(Display::Screen, 1, report);
    EditWindow window(request, report);
    if (!request.scene.empty()) window.openFirst(request.scene);
    window.resize(kWindowSize);
    window.show();
    QApplication::exec();
}

}  // namespace tavora::studio
