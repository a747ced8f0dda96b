#include "studio/window/light_table.h"

#include <QHeaderView>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace tavora::studio {
namespace {

constexpr int kSwatch = 14;  // pixels

int byteOf(double value) {
    return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

QIcon swatch(const Imath::V3d& color) {
    QPixmap picture(kSwatch, kSwatch);
    picture.fill(QColor(byteOf(color.x), byteOf(color.y), byteOf(color.z)));
    QPainter(&picture).drawRect(0, 0, kSwatch - 1, kSwatch - 1);
    return picture;
}

QString kindOf(const Light& light) {
    switch (light.kind) {
        case LightKind::Directional:
            return QObject::tr("Sun");
        case LightKind::Point:
            return QObject::tr("Point");
        case LightKind::Spot:
            return QObject::tr("Spot");
    }
    return {};
}

void addRow(QTreeWidget& table, const QString& name, const QString& kind, const Imath::V3d& color) {
    const double brightness = std::max({color.x, color.y, color.z});
    auto* row = new QTreeWidgetItem(&table, {name, kind, QString::number(brightness, 'f', 2)});
    row->setIcon(0, swatch(brightness > 0 ? color / std::max(1.0, brightness) : color));
    row->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
}

}  // namespace

LightTable::LightTable(QWidget* parent) : QTreeWidget(parent) {
    setObjectName("lights");
    setAccessibleName(tr("Lights"));
    setHeaderLabels({tr("Light"), tr("Kind"), tr("Level")});
    setRootIsDecorated(false);
    setAlternatingRowColors(true);
    setSelectionMode(NoSelection);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(0, QHeaderView::Stretch);
    header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    setToolTip(tr("The lights of the picture; a level of 1 lights a surface fully"));
}

void LightTable::show(const LightSet& lights) {
    clear();
    addRow(*this, tr("Ambient"), {}, lights.ambient);
    for (const ResolvedLight& light : lights.lights) {
        addRow(*this, QString::fromStdString(light.light->name), kindOf(*light.light), light.color);
    }
}

}  // namespace tavora::studio
