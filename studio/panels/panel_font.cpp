#include "studio/panels/panel_font.h"

#include <QApplication>
#include <QFontMetricsF>

namespace tavora::studio {
namespace {

constexpr int kPixelSize = 11;
constexpr double kAdvance = 5.4;  // pixels a character

double advanceOf(const QFont& font) {
    const QString sample = QStringLiteral("Light Colour Opacity Brightness Transparency");
    return QFontMetricsF(font).horizontalAdvance(sample) / static_cast<double>(sample.size());
}

}  // namespace

QFont panelFont() {
    QFont font = QApplication::font();
    font.setPixelSize(kPixelSize);
    font.setHintingPreference(QFont::PreferNoHinting);
    for (const int stretch : {100, 90, 80, 75}) {
        font.setStretch(stretch);
        if (advanceOf(font) <= kAdvance * 1.02) break;
    }
    return font;
}

}  // namespace tavora::studio
