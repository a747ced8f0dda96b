#include "studio/window/application.h"

#include <cstdlib>
#include <fmt/format.h>

#include "studio/util/error.h"

namespace tavora::studio {
namespace {

// The library aborts when it finds no display; its last message is replaced by this report's.
Report* fatalReport = nullptr;

void receiveLibraryMessage(QtMsgType type, const QMessageLogContext& /*where*/,
                           const QString& text) {
    if (type == QtFatalMsg) {
        fatalReport->error(
            "edit needs a display, and none can be opened (DISPLAY, WAYLAND_DISPLAY); "
            "without one, tavora panel draws the settings panel and tavora render the picture");
        std::_Exit(static_cast<int>(Fault::Usage));
    }
    fatalReport->note(2, text.toStdString());
}

}  // namespace

std::unique_ptr<QApplication> startApplication(Display display, double scale, Report& report) {
    fatalReport = &report;
    qInstallMessageHandler(receiveLibraryMessage);
    if (display == Display::Offscreen) qputenv("QT_QPA_PLATFORM", "offscreen");
    if (scale != 1) qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
    static int argc = 1;
    static char name[] = "tavora";
    static char* argv[] = {name, nullptr};
    auto application = std::make_unique<QApplication>(argc, argv);
    QApplication::setApplicationName("tavora");
    QApplication::setApplicationDisplayName("Tavora");
    QApplication::setDesktopFileName("tavora");
    QApplication::setStyle("fusion");
    return application;
}

}  // namespace tavora::studio
