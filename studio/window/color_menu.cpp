#include "studio/window/color_menu.h"

#include <QActionGroup>
#include <QApplication>

#include "studio/window/theme.h"

namespace tavora::studio {
namespace {

void apply(const QString& colors) {
    static const QPalette desktop = QApplication::palette();
    if (colors == "light") {
        QApplication::setPalette(paletteOf(Theme::Light));
    } else if (colors == "dark") {
        QApplication::setPalette(paletteOf(Theme::Dark));
    } else {
        QApplication::setPalette(desktop);
    }
}

}  // namespace

ColorMenu::ColorMenu(QWidget* parent) : QMenu(tr("C&olours"), parent) {
    setObjectName("colors");
    auto* group = new QActionGroup(this);
    add(tr("As the &Desktop"), {});
    add(tr("&Light"), "light");
    add(tr("&Dark"), "dark");
    const QString stored = memory_.colors();
    for (QAction* action : actions()) {
        group->addAction(action);
        action->setChecked(action->data() == stored);
    }
    connect(group, &QActionGroup::triggered, this, [this](const QAction* action) {
        apply(action->data().toString());
        memory_.storeColors(action->data().toString());
    });
    apply(stored);
}

void ColorMenu::add(const QString& text, const QString& colors) {
    QAction* action = addAction(text);
    action->setData(colors);
    action->setCheckable(true);
}

}  // namespace tavora::studio
