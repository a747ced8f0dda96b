#pragma once

#include <QMenu>
#include <functional>
#include <memory>
#include <vector>

#include "studio/window/look_thumbnails.h"

class QListWidget;

namespace tavora::studio {

/// A menu of the shipped looks, with pictures of the scene with each look. GUI thread.
class LookMenu : public QMenu {
    Q_OBJECT
  public:
    explicit LookMenu(QWidget* parent);
    ~LookMenu() override;

    /// Null: no scene is open.
    void show(Session* session);
    /// Returns the surfaces to which a look is applied; called when the menu opens.
    std::function<std::vector<std::size_t>()> selection;

  signals:
    /// The user chose a shipped look, by its name.
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
