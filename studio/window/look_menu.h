#pragma once

#include <QMenu>
#include <memory>

#include "studio/window/look_thumbnails.h"

class QListWidget;

namespace tavora::studio {

/// The looks that ship, as pictures of the open model, in a menu. GUI thread.
class LookMenu : public QMenu {
    Q_OBJECT
  public:
    explicit LookMenu(QWidget* parent);
    ~LookMenu() override;

    /// Pictures are rendered when the menu is first shown. Null: no scene.
    void show(Session* session);

  signals:
    /// The name of a look that ships.
    void chosen(const QString& look);

  private:
    void fill();
    void renderPictures();
    void choose(const QString& look);

    Session* session_ = nullptr;
    QListWidget* grid_;
    std::unique_ptr<LookThumbnails> thumbnails_;
};

}  // namespace tavora::studio
