#pragma once

#include <QComboBox>
#include <QLabel>
#include <QSlider>
#include <QToolButton>

#include "studio/window/edit_actions.h"
#include "studio/window/playback.h"

namespace tavora::studio {

/// The bar under the picture with the choice of animations, playback and time. Visible only for
/// scenes with animations. GUI thread.
class TimeBar : public QWidget {
    Q_OBJECT
  public:
    /// `actions` must outlive it.
    TimeBar(const EditActions& actions, QWidget* parent);

    /// `session` must outlive this object, or exist until the next call; null: none.
    void show(Session* session);

    Playback& playback() { return playback_; }

  private:
    void makeSlider();
    void fillChoices();
    void choose(int row);
    void showRange();
    void showTime();
    void showPlaying();

    EditActions actions_;
    Session* session_ = nullptr;
    Playback playback_;
    QToolButton* play_;
    QSlider* slider_;
    QLabel* time_;
    QComboBox* choice_;
    std::vector<std::vector<std::size_t>> choices_;  ///< the animations of each row
};

}  // namespace tavora::studio
