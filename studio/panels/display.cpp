#include "studio/panels/display.h"

#include <QApplication>
#include <QScreen>
#include <QWidget>

namespace tavora::studio {

QScreen& panelScreen(const QWidget& widget) {
    const QWidget* parent = widget.parentWidget();
    const QWidget& shown = parent != nullptr ? *parent->window() : widget;
    QScreen* screen = shown.screen();
    return screen != nullptr ? *screen : panelScreen();
}

QScreen& panelScreen() {
    return *QApplication::primaryScreen();
}

}  // namespace tavora::studio
