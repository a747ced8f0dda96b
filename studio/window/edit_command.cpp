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

/// The initial size, with 960 x 540 pixels for the picture.
constexpr QSize kWindowSize(1240, 640);
/// The space of the shader's panel beside the window.
constexpr QSize kPanelSize(556, 430);
/// The size that the desktop adds to a window: the title bar and the borders.
constexpr QSize kFrameSize(8, 40);

/// Gives the window its initial size, limited to the screen, and a position with space for the
/// panel beside it if the screen is large enough.
void placeInitially(QWidget& window) {
    const QRect screen = window.screen()->availableGeometry();
    const QSize size = kWindowSize.boundedTo(screen.size() - kFrameSize);
    window.resize(size);
    const QSize free = screen.size() - kFrameSize - size;
    const int panel = std::min(free.width(), kPanelSize.width());
    window.move(screen.topLeft() + QPoint((free.width() - panel) / 2, free.height() / 2));
}

/// Writes the unsaved work and returns a message about it. To be called before the program ends,
/// since a panel that closes then cancels its changes.
std::string saveUnsavedWork(EditWindow& window) {
    try {
        window.writeRecoveryNow();
        return "unsaved changes are kept and offered at the next start";
    } catch (const std::exception& error) {
        return std::string("unsaved changes are lost: ") + error.what();
    }
}

/// How often to check whether a signal requested to stop, in milliseconds.
constexpr int kSignalInterval = 100;

}  // namespace

void edit(const EditRequest& request, Report& report) {
    const auto application = startApplication(Display::Screen, 1, report);
    EditWindow window(request, report);
    if (!request.scene.empty()) window.openFirst(request.scene);
    if (!WindowMemory().restore(window)) placeInitially(window);
    window.show();

    const GracefulStop stop;
    std::string work;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (!stop.isRequested() || !work.empty()) return;
        work = saveUnsavedWork(window);
        QApplication::exit();
    });
    watch.start(kSignalInterval);
    QApplication::exec();
    if (stop.isRequested()) throw Stopped(work);
}

}  // namespace tavora::studio
