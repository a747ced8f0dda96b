// Animations in the window: what plays and when is shown, and never part of the work.

#include <QTest>
#include <fstream>
#include <set>

#include "tests/window/window_rig.h"

namespace tavora::studio::testing {
namespace {

class Playing : public WindowTest {
  protected:
    void open() {
        animate();
        start();
    }
    Session& session() { return *window().session(); }
    Playback& playback() { return timeBar().playback(); }
    QSlider& slider() { return *timeBar().findChild<QSlider*>("timeSlider"); }
    std::string time() { return timeBar().findChild<QLabel*>("time")->text().toStdString(); }
    void press(Qt::Key key) { QTest::keyClick(&view(), key); }

    /// The frames of which a picture came while it played so long, in milliseconds.
    std::multiset<int> framesSeenIn(int milliseconds) {
        std::multiset<int> seen;
        QObject guard;
        QObject::connect(&session(), &Session::pictureChanged, &guard, [&] {
            if (!session().isTimePending()) seen.insert(playback().frame());
        });
        press(Qt::Key_P);
        QTest::qWait(milliseconds);
        return seen;
    }
};

TEST_F(Playing, ScenesWithoutAnimationsHaveNoBar) {
    start();
    EXPECT_FALSE(timeBar().isVisible());
    press(Qt::Key_P);
    press(Qt::Key_Period);
    EXPECT_FALSE(playback().isPlaying() || action("playPause").isEnabled());
}

TEST_F(Playing, FramesAreChosenAndRestIsAsItWas) {
    open();
    const QImage atRest = picture();
    EXPECT_TRUE(timeBar().isVisible());
    EXPECT_FALSE(slider().isEnabled()) << "at rest";
    choosePlaying(2);  // Slide
    EXPECT_EQ(std::pair(slider().minimum(), slider().maximum()), std::pair(6, 30));
    EXPECT_EQ(time(), "0.250 s · frame 6");
    const QImage first = picture();
    press(Qt::Key_Comma);
    EXPECT_EQ(time(), "1.250 s · frame 30") << "round the start";
    press(Qt::Key_Period);
    EXPECT_EQ(picture(), first);
    for (int frame = 30; frame > 10; --frame)
        slider().setValue(frame);  // faster than pictures come
    slider().setFocus();
    QTest::keyClick(&slider(), Qt::Key_Right);
    EXPECT_EQ(time(), "0.500 s · frame 12");
    const QImage later = picture();
    EXPECT_NE(later, first);

    check(0, false);
    const QImage edited = picture();
    press(Qt::Key_Period);
    action("undo").trigger();
    press(Qt::Key_Comma);
    EXPECT_EQ(picture(), later);
    EXPECT_NE(edited, later);
    EXPECT_FALSE(isModified() || document().undo.canUndo());
    choosePlaying(0);
    EXPECT_EQ(picture(), atRest);
    EXPECT_FALSE(slider().isEnabled());
    action("save").trigger();
    EXPECT_EQ(session().scene().animations.size(), 2U);
}

TEST_F(Playing, ShowsFramesInRealTimeAroundTheEndAndWhileOneEdits) {
    open();
    choosePlaying(3);  // Hide, of half a second
    QElapsedTimer clock;
    clock.start();
    const std::multiset<int> seen = framesSeenIn(1200);
    EXPECT_GE(std::set<int>(seen.begin(), seen.end()).size(), 6U);
    EXPECT_GE(seen.size() + 3, std::set<int>(seen.begin(), seen.end()).size());
    const double played = std::fmod(static_cast<double>(clock.elapsed()) / 1000, 0.5);
    const double behind = std::fmod(played - session().time() + 0.5, 0.5);
    EXPECT_LT(std::min(behind, 0.5 - behind), 0.2);
    EXPECT_TRUE(action("playPause").isChecked());

    check(0, false);
    QTest::qWait(100);
    action("undo").trigger();
    EXPECT_TRUE(playback().isPlaying());
    press(Qt::Key_P);
    EXPECT_FALSE(playback().isPlaying() || action("playPause").isChecked());
    const double stopped = session().time();
    EXPECT_EQ(session().refined() == 1 ? picture() : picture(), picture());
    EXPECT_EQ(session().time(), stopped) << "while it is refined";
    EXPECT_FALSE(isModified());
}

TEST_F(Playing, EndsWithItsSceneAtAnyMoment) {
    open();
    for (int times = 0; times < 12; ++times) {
        choosePlaying(1 + times % 3);
        press(Qt::Key_P);
        EXPECT_TRUE(playback().isPlaying());
        QTest::qWait(times * 7);
        if (times % 3 == 0) {
            kill();
            start();
        } else {
            EXPECT_TRUE(window().open(scene_));
        }
        EXPECT_FALSE(playback().isPlaying());
        EXPECT_EQ(session().playing().size(), 0U);
    }
}

}  // namespace
}  // namespace tavora::studio::testing
