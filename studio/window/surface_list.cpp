#include "studio/window/surface_list.h"

#include <QSignalBlocker>

#include "studio/edit/undo_steps.h"

namespace tavora::studio {
namespace {

std::size_t surfaceOf(const QListWidgetItem& item) {
    return item.data(Qt::UserRole).toULongLong();
}

}  // namespace

SurfaceList::SurfaceList(QWidget* parent) : QListWidget(parent) {
    setObjectName("surfaces");
    setAccessibleName(tr("Surfaces"));
    setSelectionMode(ExtendedSelection);
    setAlternatingRowColors(true);
    setUniformItemSizes(true);
    setToolTip(tr("Double-click a surface for its options; the box turns its shader on and off"));
    connect(this, &QListWidget::itemChanged, this, &SurfaceList::applyCheck);
    connect(this, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { emit surfaceActivated(surfaceOf(*item)); });
    connect(this, &QListWidget::currentItemChanged, this, [this] { emit currentSurfaceChanged(); });
}

void SurfaceList::show(Session* session) {
    if (session_ != nullptr) session_->disconnect(this);
    session_ = session;
    clear();
    if (session_ == nullptr) return;
    QSignalBlocker quiet(this);
    for (const std::size_t surface : session_->document().settings.surfaces()) {
        const auto name = QString::fromStdString(session_->scene().surfaces[surface].name);
        auto* item = new QListWidgetItem(name, this);
        item->setData(Qt::UserRole, static_cast<qulonglong>(surface));
        update(surface);
    }
    quiet.unblock();
    connect(session_, &Session::settingsChanged, this, &SurfaceList::update);
    connect(session_, &Session::stateChanged, this, [this] {
        for (const std::size_t surface : session_->document().settings.surfaces())
            update(surface);
    });
    if (count() > 0) setCurrentRow(0);
}

std::vector<std::size_t> SurfaceList::selection() const {
    std::vector<std::size_t> surfaces;
    for (int row = 0; row < count(); ++row) {
        if (item(row)->isSelected()) surfaces.push_back(surfaceOf(*item(row)));
    }
    return surfaces;
}

std::optional<std::size_t> SurfaceList::current() const {
    const QListWidgetItem* item = currentItem();
    if (item == nullptr) return std::nullopt;
    return surfaceOf(*item);
}

void SurfaceList::select(std::size_t surface) {
    for (int row = 0; row < count(); ++row) {
        if (surfaceOf(*item(row)) == surface) setCurrentRow(row);
    }
}

void SurfaceList::update(std::size_t surface) {
    const SceneSettings& settings = session_->document().settings;
    const QSignalBlocker quiet(this);
    for (int row = 0; row < count(); ++row) {
        QListWidgetItem* line = item(row);
        if (surfaceOf(*line) != surface) continue;
        const bool enabled = activeBlock(settings.at(surface)) != nullptr;
        line->setCheckState(enabled ? Qt::Checked : Qt::Unchecked);
        QFont font = line->font();
        font.setBold(settings.at(surface) != settings.clean(surface));
        line->setFont(font);
    }
}

void SurfaceList::applyCheck(QListWidgetItem* item) {
    Document& document = session_->document();
    document.undo.push(
        enableStep(document.settings, surfaceOf(*item), item->checkState() == Qt::Checked));
}

}  // namespace tavora::studio
