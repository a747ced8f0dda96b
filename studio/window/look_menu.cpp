#include "studio/window/look_menu.h"

#include <QListWidget>
#include <QWidgetAction>

#include "studio/scene/settings/look.h"
#include "studio/window/dialogs.h"

namespace tavora::studio {
namespace {

constexpr int kColumns = 3;
constexpr int kGap = 10;    // pixels between pictures
constexpr int kLabel = 22;  // pixels under a picture

QPixmap emptyPicture() {
    QPixmap picture(LookThumbnails::kWidth, LookThumbnails::kHeight);
    picture.fill(Qt::gray);
    return picture;
}

}  // namespace

LookMenu::LookMenu(QWidget* parent)
    : QMenu(tr("&Looks"), parent), caption_(addSection({})), grid_(new QListWidget(this)) {
    grid_->setObjectName("looks");
    grid_->setAccessibleName(tr("Looks"));
    grid_->setViewMode(QListView::IconMode);
    grid_->setMovement(QListView::Static);
    grid_->setResizeMode(QListView::Adjust);
    grid_->setFrameShape(QFrame::NoFrame);
    grid_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    grid_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    grid_->setIconSize({LookThumbnails::kWidth, LookThumbnails::kHeight});
    grid_->setGridSize({LookThumbnails::kWidth + kGap, LookThumbnails::kHeight + kLabel + kGap});
    connect(grid_, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { choose(item->data(Qt::UserRole).toString()); });
    connect(grid_, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { choose(item->data(Qt::UserRole).toString()); });
    auto* holder = new QWidgetAction(this);
    holder->setDefaultWidget(grid_);
    addAction(holder);
    addSeparator();
    fill();
    connect(this, &QMenu::aboutToShow, this, &LookMenu::prepare);
    connect(this, &QMenu::aboutToHide, this, [this] {
        if (thumbnails_ != nullptr) thumbnails_->stop();  // they are not visible
    });
}

LookMenu::~LookMenu() = default;

void LookMenu::show(Session* session) {
    thumbnails_.reset();
    session_ = session;
    for (int row = 0; row < grid_->count(); ++row)
        grid_->item(row)->setIcon(emptyPicture());
    setEnabled(session != nullptr);
}

void LookMenu::fill() {
    for (const std::string& look : shippedLooks()) {
        const auto name = QString::fromStdString(look);
        auto* item = new QListWidgetItem(emptyPicture(), name, grid_);
        item->setData(Qt::UserRole, name);
        item->setToolTip(QString::fromStdString(readLook(look).description));
    }
    const int rows = (grid_->count() + kColumns - 1) / kColumns;
    const QSize cell = grid_->gridSize();
    grid_->setFixedSize(kColumns * cell.width() + 2 * kGap, rows * cell.height() + 2 * kGap);
}

void LookMenu::prepare() {
    if (session_ == nullptr) return;
    const std::vector<std::size_t> surfaces = selection();
    nameSurfaces(surfaces);
    grid_->setEnabled(!surfaces.empty());
    if (thumbnails_ == nullptr) {
        thumbnails_ = std::make_unique<LookThumbnails>(*session_);
        connect(thumbnails_.get(), &LookThumbnails::ready, this,
                [this](const QString& look, const QImage& picture) {
                    for (QListWidgetItem* item : grid_->findItems(look, Qt::MatchExactly))
                        item->setIcon(QPixmap::fromImage(picture));
                });
    }
    guarded(this, [&] { thumbnails_->renderFor(surfaces); });
}

void LookMenu::nameSurfaces(const std::vector<std::size_t>& surfaces) {
    if (surfaces.empty()) return caption_->setText(tr("Select a surface first"));
    if (surfaces.size() > 1) {
        return caption_->setText(tr("On the %1 selected surfaces").arg(surfaces.size()));
    }
    const std::string& name = session_->scene().surfaces[surfaces.front()].name;
    caption_->setText(tr("On %1").arg(QString::fromStdString(name).replace('&', "&&")));
}

void LookMenu::choose(const QString& look) {
    close();
    emit chosen(look);
}

}  // namespace tavora::studio
