#include "studio/window/edit_window.h"

#include <QDropEvent>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <fstream>

#include "studio/window/window_memory.h"
#include "tests/panels/settings_rig.h"
#include "tests/window/window_rig.h"

namespace tavora::studio::testing {
namespace {

constexpr const char* kMarkers = "area.7";

/// A place in the picture that shows the surface, clear of its edges.
QPoint placeOf(EditWindow& window, std::ptrdiff_t surface) {
    auto& view = *window.findChild<PictureView*>("picture");
    for (int y = 20; y < view.height(); y += 10) {
        for (int x = 20; x < view.width(); x += 10) {
            if (window.session()->picture().surfaceAt(x, y) == surface) return {x, y};
        }
    }
    throw std::runtime_error("the surface is not in the picture");
}

using EditWindowTest = WindowTest;

TEST_F(EditWindowTest, AClickInThePictureSelectsTheSurfaceThere) {
    start();
    picture();
    for (const std::size_t surface : {1U, 0U, 1U}) {
        QTest::mouseClick(&view(), Qt::LeftButton, {},
                          placeOf(window(), static_cast<std::ptrdiff_t>(surface)));
        EXPECT_EQ(surfaces().selection(), std::vector<std::size_t>{surface});
    }
    EXPECT_FALSE(document().isModified());
}

TEST_F(EditWindowTest, ADragTurnsTheViewAndHomeBringsTheSamePictureBack) {
    start();
    const QImage before = picture();
    drag(view(), 60);
    EXPECT_EQ(surfaces().current(), 0) << "a drag selects nothing";
    EXPECT_NE(picture(), before);
    trigger("resetView");
    EXPECT_EQ(picture(), before);
    EXPECT_FALSE(document().isModified()) << "the view is nobody's setting";
}

TEST_F(EditWindowTest, ThePictureFollowsThePanelAndUndoWorksUnderIt) {
    start();
    const QImage before = picture();
    const auto first = state();
    QImage edited;
    const auto drags = [&](QWidget& panel) {
        drag(find(panel, "Opacity.percent"), -40);
        edited = picture();
        EXPECT_NE(edited, before);
        EXPECT_TRUE(window().isWindowModified());
        QTest::keyClick(&panel, Qt::Key_Z, Qt::ControlModifier);
    };
    const auto redoes = [&](QWidget& panel) {
        EXPECT_EQ(state(), first) << "the whole drag was one step";
        EXPECT_EQ(picture(), before);
        EXPECT_FALSE(window().isWindowModified());
        QTest::keyClick(&panel, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    };
    const auto cancels = [&](QWidget& panel) {
        EXPECT_EQ(picture(), edited);
        QTest::keyClick(&panel, Qt::Key_Escape);
    };
    inPanel({drags, redoes, cancels});
    EXPECT_EQ(state(), first) << "Cancel goes back to how the panel was met";
    trigger("undo");
    EXPECT_NE(state(), first) << "and can be undone itself";
}

/// Two hundred things that a user can do in a panel.
void editMuch(QWidget& panel) {
    const char* modes[] = {"Add", "Blend", "Delete"};
    for (int i = 0; i < 50; ++i) {
        for (auto* button : find(panel, "choice").findChildren<QPushButton*>()) {
            if (button->text() == modes[i % 3]) click(*button);
        }
        clickAt(find(panel, kMarkers), (i * 73) % 380 + 5);
        QTest::keyClick(&find(panel, "Force Color.percent"),
                        i % 4 == 3 ? Qt::Key_Up : Qt::Key_Down);
        drag(find(panel, "Shift.drag"), i % 2 == 0 ? 9 : -7);
        click(find(panel, "Use All Lights.check"));
    }
}

TEST_F(EditWindowTest, ManyEditsAreUndoneToTheByteAndSoByOneCancel) {
    start();
    const auto first = state();
    const auto confirm = [](QWidget& panel) { QTest::keyClick(&panel, Qt::Key_Return); };
    inPanel({editMuch, confirm});
    const auto last = state();
    ASSERT_NE(last, first);
    int steps = 0;
    for (; document().canUndo(); ++steps)
        QTest::keyClick(&window(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_GE(steps, 150) << "gestures were joined that are none";
    EXPECT_EQ(state(), first);
    while (document().canRedo())
        trigger("redo");
    EXPECT_EQ(state(), last);

    trigger("save");
    inPanel({editMuch});
    EXPECT_EQ(state(), last);
}

TEST_F(EditWindowTest, RendersWhileZonesComeAndGo) {
    start();
    const auto confirm = [](QWidget& panel) { QTest::keyClick(&panel, Qt::Key_Return); };
    inPanel({editMuch, editMuch, confirm});
    const QImage edited = picture();
    trigger("save");
    kill();
    start();
    EXPECT_EQ(picture(), edited) << "what was rendered meanwhile left a trace";
}

TEST_F(EditWindowTest, AnotherSurfaceIsChosenUnderThePanel) {
    start();
    const auto first = state();
    const auto goOn = [&](QWidget& panel) {
        drag(find(panel, "Opacity.percent"), -20);
        surfaces().setCurrentRow(1);
    };
    const auto cancel = [&](QWidget& panel) {
        EXPECT_EQ(window().panel().surface(), 1U);
        drag(find(panel, "Opacity.percent"), -30);
        QTest::keyClick(&panel, Qt::Key_Escape);
    };
    inPanel({goOn, cancel});
    EXPECT_NE(state()[0], first[0]) << "going on kept the changes";
    EXPECT_EQ(state()[1], first[1]);
}

TEST_F(EditWindowTest, TheSavedPictureShowsWhileAKeyIsHeld) {
    start();
    const QImage saved = picture();
    surfaces().item(0)->setCheckState(Qt::Unchecked);
    const QImage edited = picture();
    ASSERT_NE(edited, saved);
    QTest::keyPress(&view(), Qt::Key_C);
    EXPECT_EQ(picture(), saved);
    QTest::keyRelease(&view(), Qt::Key_C);
    EXPECT_EQ(picture(), edited);
}

TEST_F(EditWindowTest, ComesBackWhereItWasInTheColoursChosen) {
    const auto colors = [this] { return window().findChild<QMenu*>("colors")->actions(); };
    start();
    colors().last()->trigger();
    EXPECT_LT(QApplication::palette().window().color().lightness(), 100) << "not dark";
    window().resize(700, 420);
    window().close();
    QApplication::setPalette({});
    start();
    EXPECT_TRUE(colors().last()->isChecked());
    EXPECT_LT(QApplication::palette().window().color().lightness(), 100) << "forgotten";
    EXPECT_TRUE(WindowMemory().restore(window()));
    EXPECT_EQ(window().size(), QSize(700, 420));
    colors().first()->trigger();
}

TEST_F(EditWindowTest, CopiesAndWearsLooksOnWhatIsSelected) {
    start();
    surfaces().setCurrentRow(0);
    surfaces().item(0)->setCheckState(Qt::Unchecked);
    trigger("copy");
    surfaces().setCurrentRow(1);
    trigger("paste");
    EXPECT_EQ(state()[1], state()[0]);

    const auto look = folder_ / "half.json";
    std::ofstream(look) << R"({"tavora": "look", "version": 1, "name": "half",
                               "description": "", "settings": {"edgeCoverage": 0.5}})";
    QMimeData dropped;
    dropped.setUrls({QUrl::fromLocalFile(QString::fromStdString(look))});
    QDragEnterEvent enter({9, 9}, Qt::CopyAction, &dropped, Qt::LeftButton, {});
    QApplication::sendEvent(&window(), &enter);
    QDropEvent drop({9, 9}, Qt::CopyAction, &dropped, Qt::LeftButton, {});
    QApplication::sendEvent(&window(), &drop);
    EXPECT_TRUE(state()[1].enabled);
    EXPECT_FALSE(state()[0].enabled) << "only the selected surface wears it";
    trigger("undo");
    EXPECT_EQ(state()[1], state()[0]);
}

TEST_F(EditWindowTest, UnsavedWorkIsNeverLostUnasked) {
    start();
    surfaces().item(1)->setCheckState(Qt::Unchecked);
    answer(QMessageBox::Cancel);
    EXPECT_FALSE(window().close());
    EXPECT_TRUE(document().isModified());

    // The file vanishes with its folder: a dialog, and the work stays.
    const auto elsewhere = folder_ / "gone";
    std::filesystem::create_directory(elsewhere);
    trigger("save");
    EXPECT_FALSE(document().isModified());
    std::filesystem::remove(scene_);
    surfaces().item(1)->setCheckState(Qt::Checked);
    answer(QMessageBox::Ok);
    trigger("save");
    EXPECT_TRUE(document().isModified());
    answer(QMessageBox::Discard);
    EXPECT_TRUE(window().close());
}

TEST_F(EditWindowTest, AKilledSessionsWorkIsOfferedAtTheNextStart) {
    start();
    surfaces().item(0)->setCheckState(Qt::Unchecked);
    const auto work = state();
    window().keepSafe();
    kill();

    answer(QMessageBox::Cancel);
    start();
    EXPECT_TRUE(QTest::qWaitFor(answered()));
    EXPECT_FALSE(document().isModified());
    ASSERT_TRUE(window().close());
    answer(QMessageBox::Yes);
    start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return document().isModified(); }));
    EXPECT_EQ(state(), work);
    trigger("save");
    kill();
    start();
    QTest::qWait(20);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "nothing is left to offer";
    EXPECT_EQ(state(), work);
}

}  // namespace
}  // namespace tavora::studio::testing
