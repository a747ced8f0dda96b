#include "studio/panels/color_dialog.h"

#include <QColorDialog>
#include <algorithm>

namespace tavora::studio {
namespace {

/// A channel clamped to the range of a display.
float shown(float channel) {
    return channel > 0 ? std::min(channel, 1.0f) : 0.0f;  // NaN: 0
}

}  // namespace

int pickColor(HostColorPick& request, QWidget* parent, QDialog*& open) {
    QColorDialog dialog(parent);
    dialog.setOption(QColorDialog::DontUseNativeDialog);
    dialog.setWindowTitle(QString::fromUtf8(request.title));
    dialog.setCurrentColor(
        QColor::fromRgbF(shown(request.red), shown(request.green), shown(request.blue)));
    const QColor before = dialog.currentColor();
    if (request.liveUpdate != nullptr) {
        QObject::connect(
            &dialog, &QColorDialog::currentColorChanged, &dialog, [&](const QColor& color) {
                request.liveUpdate(request.data, color.redF(), color.greenF(), color.blueF());
            });
    }
    open = &dialog;
    const bool confirmed = dialog.exec() == QDialog::Accepted;
    open = nullptr;
    request.result = confirmed ? 1 : 0;
    const QColor color = dialog.currentColor();
    // The dialog rounds channels to 256 values; a colour that was not changed must stay exact.
    if (!confirmed || color == before) return 0;
    request.red = color.redF();
    request.green = color.greenF();
    request.blue = color.blueF();
    return 0;
}

}  // namespace tavora::studio
