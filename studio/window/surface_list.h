#pragma once

#include <QListWidget>
#include <optional>
#include <vector>

#include "studio/window/session.h"

namespace tavora::studio {

/// The list of the scene's surfaces. Shows which have an enabled shader, and which have unsaved
/// changes. GUI thread.
class SurfaceList : public QListWidget {
    Q_OBJECT
  public:
    explicit SurfaceList(QWidget* parent);

    /// `session` must outlive the list, or exist until the next call of show(); null: none.
    void show(Session* session);

    /// The selected surfaces, as indices into Scene::surfaces, in the order of the list.
    std::vector<std::size_t> selection() const;
    /// The surface for actions on a single one, if there is one.
    std::optional<std::size_t> current() const;
    void select(std::size_t surface);

  signals:
    void surfaceActivated(std::size_t surface);
    void currentSurfaceChanged();

  private:
    void update(std::size_t surface);
    void applyCheck(QListWidgetItem* item);

    Session* session_ = nullptr;
};

}  // namespace tavora::studio
