#include "studio/window/theme.h"

#include <QApplication>
#include <QStyle>

namespace tavora::studio {
namespace {

QPalette darkPalette() {
    const QColor base(0x1e, 0x20, 0x23);
    const QColor window(0x2a, 0x2c, 0x30);
    const QColor button(0x36, 0x39, 0x3e);
    const QColor text(0xdf, 0xe1, 0xe5);
    const QColor faint(0x7d, 0x81, 0x88);
    const QColor accent(0x3d, 0x7e, 0xd8);

    QPalette palette(button, window);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::ToolTipBase, button);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, accent.lighter(130));
    palette.setColor(QPalette::PlaceholderText, faint);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, faint);
    return palette;
}

}  // namespace

QPalette paletteOf(Theme theme) {
    return theme == Theme::Dark ? darkPalette() : QApplication::style()->standardPalette();
}

}  // namespace tavora::studio
