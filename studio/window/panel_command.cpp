#include <QBuffer>
#include <QImage>
#include <QWidget>
#include <fmt/format.h>

#include "studio/edit/document.h"
#include "studio/files/whole_file.h"
#include "studio/panels/panels.h"
#include "studio/services/directory_info.h"
#include "studio/setup/scene_view.h"
#include "studio/setup/surface_names.h"
#include "studio/util/error.h"
#include "studio/window/application.h"
#include "studio/window/commands.h"
#include "studio/window/panel_services.h"
#include "studio/window/theme.h"

namespace tavora::studio {
namespace {

void checkOutput(const PanelRequest& request) {
    if (request.output.empty())
        throw Error(Fault::Usage, "panel needs -o FILE, the picture to write");
    if (!request.output.ends_with(".png")) {
        throw Error(Fault::Usage, fmt::format("{}: a panel is written as .png; name such a file",
                                              request.output));
    }
}

std::size_t chosenSurface(const Document& document, const std::string& name) {
    if (!name.empty())
        return matchingSurfaces(document.settings.scene(), name, "--surface").front();
    if (document.settings.surfaces().empty()) {
        throw Error(Fault::Usage,
                    fmt::format("{}: no surface has settings to show; name another scene",
                                document.file.path().string()));
    }
    return document.settings.surfaces().front();
}

QImage drawOptions(const Document& document, Shader& record, int tab) {
    QImage picture;
    PanelHooks hooks;
    hooks.insteadOfShowing = [&](QWidget& panel) {
        selectTab(panel, tab);
        picture = panel.grab().toImage();
    };
    const Panels panels(nullptr, hooks);
    // A module stores default settings when it opens a panel and there are none. Drawing a panel
    // must not change the user's folder.
    const HiddenSettingsFolder hidden;
    openOptions(document.settings.module(), record);
    return picture;
}

void writePng(const QImage& picture, const std::string& file) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    picture.save(&buffer, "PNG");
    writeWholeFile(file, {bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

}  // namespace

void drawPanel(const PanelRequest& request, Report& report) {
    checkOutput(request);
    Document document(request.scene, request.shading, report, request.reading);
    const std::size_t surface = chosenSurface(document, request.surface);
    const auto application = startApplication(Display::Offscreen, request.scale, report);
    QApplication::setPalette(paletteOf(request.theme));
    const LightSet lights = resolveLights(document.settings.scene(),
                                          chooseCamera(document.settings.scene(), {}, 1), {});
    const PanelBinding binding(lights);
    const QImage picture = drawOptions(document, document.settings.record(surface), request.tab);
    if (picture.isNull()) {
        throw Error(Fault::Module, fmt::format("{}: the module has no settings panel to draw",
                                               document.settings.module().file().string()));
    }
    writePng(picture, request.output);
    report.note(1, fmt::format("{} written", request.output));
}

}  // namespace tavora::studio
