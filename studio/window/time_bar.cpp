#include "studio/window/time_bar.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QStyle>
#include <algorithm>

namespace tavora::studio {
namespace {

constexpr int kMargin = 6;          // pixels
constexpr int kChoiceLetters = 18;  // of a name; longer names are complete in the list
constexpr int kMaxRows = 24;        // of the list on the screen at once

QString timeText(double seconds, int frame) {
    return QObject::tr("%1 s · frame %2").arg(seconds, 0, 'f', 3).arg(frame);
}

}  // namespace

TimeBar::TimeBar(const EditActions& actions, QWidget* parent)
    : QWidget(parent),
      actions_(actions),
      play_(new QToolButton),
      slider_(new QSlider(Qt::Horizontal)),
      time_(new QLabel),
      choice_(new QComboBox) {
    setObjectName("timeBar");
    play_->setObjectName("play");
    play_->setDefaultAction(actions_.play);
    play_->setToolButtonStyle(Qt::ToolButtonIconOnly);
    play_->setFocusPolicy(Qt::StrongFocus);
    makeSlider();
    time_->setObjectName("time");
    time_->setAccessibleName(tr("Time"));
    time_->setToolTip(tr("The time of the picture, and its frame at 24 a second"));
    time_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    choice_->setObjectName("animations");
    choice_->setAccessibleName(tr("What plays"));
    choice_->setToolTip(tr("Which of the scene's animations play; at rest, none does"));
    choice_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    choice_->setMinimumContentsLength(kChoiceLetters);
    choice_->setMaxVisibleItems(kMaxRows);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, 0, 0);
    layout->addWidget(choice_);
    layout->addWidget(play_);
    layout->addWidget(slider_, 1);
    layout->addWidget(time_);
    connect(choice_, &QComboBox::activated, this, &TimeBar::choose);
    connect(actions_.play, &QAction::triggered, &playback_, &Playback::setPlaying);
    connect(actions_.frameBack, &QAction::triggered, this, [this] { playback_.step(-1); });
    connect(actions_.frameOn, &QAction::triggered, this, [this] { playback_.step(1); });
    connect(&playback_, &Playback::playingChanged, this, &TimeBar::showPlaying);
    show(nullptr);
}

void TimeBar::makeSlider() {
    slider_->setObjectName("timeSlider");
    slider_->setAccessibleName(tr("Frame"));
    slider_->setToolTip(tr("The frame that is shown; drag, or step with , and ."));
    slider_->setPageStep(static_cast<int>(Playback::kFps) / 2);
    connect(slider_, &QSlider::valueChanged, this, [this](int frame) { playback_.goTo(frame); });
}

void TimeBar::show(Session* session) {
    if (session_ != nullptr) session_->disconnect(this);
    session_ = session;
    playback_.show(session);
    const bool hasAnimations = session != nullptr && !session->scene().animations.empty();
    setVisible(hasAnimations);
    if (hasAnimations) {
        fillChoices();
        connect(session, &Session::timeChanged, this, &TimeBar::showTime);
    }
    showRange();
}

void TimeBar::fillChoices() {
    const QSignalBlocker silent(choice_);
    choice_->clear();
    choices_.clear();
    const auto add = [this](const QString& text, const std::vector<std::size_t>& animations) {
        choice_->addItem(text);
        choices_.push_back(animations);
    };
    add(tr("At rest"), {});
    const auto together = session_->document().film.compatibleAnimations();
    if (together.size() > 1) add(tr("All that can play at once"), together);
    const std::vector<AnimationInfo>& animations = session_->scene().animations;
    for (std::size_t i = 0; i < animations.size(); ++i) {
        const QString name = QString::fromStdString(animations[i].name).simplified();
        add(name.isEmpty() ? tr("Animation %1").arg(i) : name, {i});
    }
    const std::vector<std::size_t>& playing = session_->playing();
    const auto found = std::find(choices_.begin(), choices_.end(), playing);
    if (found == choices_.end()) add(tr("%1 animations").arg(playing.size()), playing);
    choice_->setCurrentIndex(static_cast<int>(found - choices_.begin()));
}

void TimeBar::choose(int row) {
    const bool plays = playback_.isPlaying();
    playback_.setPlaying(false);
    session_->play(choices_[static_cast<std::size_t>(row)]);
    showRange();
    playback_.setPlaying(plays);
}

void TimeBar::showRange() {
    const bool canPlay = playback_.canPlay();
    for (QAction* action : {actions_.play, actions_.frameBack, actions_.frameOn})
        action->setEnabled(canPlay);
    slider_->setEnabled(canPlay);
    const QSignalBlocker silent(slider_);
    if (session_ != nullptr) slider_->setRange(playback_.firstFrame(), playback_.lastFrame());
    showTime();
    showPlaying();
    // As wide as the longest text, so that the slider does not change its size while playing.
    const QString longest = timeText(slider_->maximum() / Playback::kFps, slider_->maximum());
    time_->setMinimumWidth(time_->fontMetrics().horizontalAdvance(longest) + kMargin);
}

void TimeBar::showTime() {
    if (session_ == nullptr) return;
    const QSignalBlocker silent(slider_);
    slider_->setValue(playback_.frame());
    time_->setText(playback_.canPlay() ? timeText(session_->time(), playback_.frame()) : QString());
}

void TimeBar::showPlaying() {
    const bool plays = playback_.isPlaying();
    actions_.play->setChecked(plays);
    actions_.play->setIcon(
        style()->standardIcon(plays ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay));
    actions_.play->setText(plays ? tr("&Pause") : tr("&Play"));
}

}  // namespace tavora::studio
