#pragma once

#include <QListWidget>
#include <vector>

#include "studio/window/session.h"

namespace tavora::studio {

/// The surfaces of the scene: which have the shader, which differ from the
/// file, which are selected. GUI thread.
class SurfaceList : public QListWidget {
    Q_OBJECT
  public:
    explicit SurfaceList(QWidget* parent);

    /// `session` must outlive the list or its next call of show(); null: none.
    void show(Session* session);

    /// Of Scene::surfaces, in the order of the list.
    std::vector<std::size_t> selection() const;
    /// The one that single actions are about; -1: none.
    std::ptrdiff_t current() const;
    void select(std::size_t surface);

  signals:
    void surfaceActivated(std::size_t surface);
    void selectionChangedTo(std::ptrdiff_t surface);

  private:
    void update(std::size_t surface);
    void takeCheck(QListWidgetItem* item);

    Session* session_ = nullptr;
};

}  // namespace tavora::studio
