#include <QScreen>
#include <QTimer>
#include <algorithm>

#include "studio/app/interruption.h"
#include "studio/app/stopped.h"
#include "studio/window/application.h"
#include "studio/window/commands.h"
#include "studio/window/edit_window.h"
#include "studio/window/window_memory.h"

namespace tavora::studio {
namespace {

/// Leaves 960 x 540 for the picture.
constexpr QSize kWindowSize(1240, 640);
/// What the shader's panel takes beside the window.
constexpr QSize kPanelSize(556, 430);
/// What a desktop adds to a window: the title bar and the edges.
constexpr QSize kFrameSize(8, 40);

/// The usual size where the screen has room for it, and there the panel beside
/// the window where it has room for both.
void placeFirst(QWidget& window) {
    const QRect screen = window.screen()->availableGeometry();
    const QSize size = kWindowSize.boundedTo(screen.size() - kFrameSize);
    window.resize(size);
    const QSize free = screen.size() - kFrameSize - size;
    const int panel = std::min(free.width(), kPanelSize.width());
    window.move(screen.topLeft() + QPoint((free.width() - panel) / 2, free.height() / 2));
}

/// Says what became of the work. Now: a panel that closes with the program
/// takes its changes back.
std::string keepWork(EditWindow& window) {
    try {
        window.keepSafe();
        return "unsaved changes are kept and offered at the next start";
    } catch (const std::exception& error) {
        return std::string("unsaved changes are lost: ") + error.what();
    }
}

/// How often, in milliseconds, to look whether a signal asks to stop.
constexpr int kSignalInterval = 100;

}  // namespace

void edit(const EditRequest& request, Report& report) {
    const auto application = startApplication(Display::Screen, 1, report);
    EditWindow window(request, report);
    if (!request.scene.empty()) window.openFirst(request.scene);
    if (!WindowMemory().restore(window)) placeFirst(window);
    window.show();

    const GracefulStop stop;
    std::string work;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (!stop.isRequested() || !work.empty()) return;
        work = keepWork(window);
        QApplication::exit();
    });
    watch.start(kSignalInterval);
    QApplication::exec();
    if (stop.isRequested()) throw Stopped(work);
}

}  // namespace tavora::studio
