#pragma once

#include <QComboBox>
#include <QLabel>
#include <QSlider>
#include <QToolButton>

#include "studio/window/edit_actions.h"
#include "studio/window/playback.h"

namespace tavora::studio {

/// What plays and when, under the picture: there only for scenes with animations. GUI
/// thread.
class TimeBar : public QWidget {
    Q_OBJECT
  public:
    /// `actions` must outlive it.
    TimeBar(const EditActions& actions, QWidget* parent);

    /// `session` must outlive it or the next call; null: none.
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
    std::vector<std::vector<std::size_t>> choices_;  ///< what plays, by row
};

}  // namespace tavora::studio
