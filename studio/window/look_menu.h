#pragma once

#include <QMenu>
#include <functional>
#include <memory>
#include <vector>

#include "studio/window/look_thumbnails.h"

class QListWidget;

namespace tavora::studio {

/// The looks that ship, in a menu, as pictures of what choosing them gives. GUI
/// thread.
class LookMenu : public QMenu {
    Q_OBJECT
  public:
    explicit LookMenu(QWidget* parent);
    ~LookMenu() override;

    /// Null: no scene.
    void show(Session* session);
    /// What a look is put on: read when the menu comes up, which shows it.
    std::function<std::vector<std::size_t>()> selection;

  signals:
    /// The name of a look that ships.
    void chosen(const QString& look);

  private:
    void fill();
    void prepare();
    void nameSurfaces(const std::vector<std::size_t>& surfaces);
    void choose(const QString& look);

    Session* session_ = nullptr;
    QAction* caption_;
    QListWidget* grid_;
    std::unique_ptr<LookThumbnails> thumbnails_;
};

}  // namespace tavora::studio
