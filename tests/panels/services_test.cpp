// The panel services as modules other than ours may use and misuse them.

#include <QApplication>
#include <QLabel>
#include <QPaintEvent>
#include <QPushButton>
#include <QTabBar>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <map>

#include "host/services/color_picker.h"
#include "host/services/panels.h"
#include "studio/panels/canvas.h"
#include "studio/services/registry.h"
#include "tests/panels/settings_rig.h"

namespace tavora::studio::testing {
namespace {

HostValue recordOf(int value) {
    HostValue record{HOST_VALUE_INTEGER, {}};
    record.of.integer = value;
    return record;
}
HostValue recordOf(double value) {
    HostValue record{HOST_VALUE_FLOAT, {}};
    record.of.number = value;
    return record;
}
HostControlDescription areaOf(int width, int height) {
    HostControlDescription area{HOST_VALUE_AREA, {}};
    area.of.area = {width, height};
    return area;
}
HostControlDescription choice() {
    static const char* items[] = {"Of", "Everything", nullptr};
    HostControlDescription choice{HOST_VALUE_CHOICE, {}};
    choice.of.choice.items = items;
    return choice;
}

struct Painted : QObject {
    QRegion region;
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) region |= static_cast<QPaintEvent*>(event)->region();
        return false;
    }
};

class PanelServices : public ::testing::Test {
  protected:
    PanelServices() {
        PanelHooks hooks;
        hooks.opened = [this](QWidget& opened) {
            QTimer::singleShot(0, &opened, [this, &opened] {
                EXPECT_TRUE(QTest::qWaitForWindowActive(&opened));
                if (user) std::exchange(user, {})(opened);
                panels->close(false);
            });
        };
        panels = std::make_unique<Panels>(nullptr, hooks);
        host = static_cast<const HostPanelServices*>(findServiceOrWindow(HOST_PANELS_SERVICE, 0));
        panel = host->create("Probe", nullptr);
    }
    ~PanelServices() override { host->destroy(panel); }

    HostControlId add(const char* type, const char* label = "",
                      const HostControlDescription& description = {}, int x = 0, int y = 0) {
        const HostControlId made = host->addControl(panel, type, &description, label);
        HostValue value{HOST_VALUE_INTEGER, {}};
        value.of.pointer = this;
        host->setControl(made, HOST_CONTROL_USER_DATA, &value);
        value.of.event = [](HostControlId, void* self) {
            auto* test = static_cast<PanelServices*>(self);
            ++test->events;
            if (test->onEvent) test->onEvent();
        };
        host->setControl(made, HOST_CONTROL_EVENT, &value);
        set(made, x, HOST_CONTROL_X);
        set(made, y, HOST_CONTROL_Y);
        return made;
    }
    template <class Value>
    void set(HostControlId control, Value value, HostControlAttribute what = HOST_CONTROL_VALUE) {
        const HostValue record = recordOf(value);
        host->setControl(control, what, &record);
    }
    int integer(HostControlId control, HostControlAttribute what = HOST_CONTROL_VALUE) {
        HostValue value = recordOf(0);
        host->getControl(control, what, &value);
        return value.of.integer;
    }
    double number(HostControlId control) {
        HostValue value = recordOf(0.0);
        host->getControl(control, HOST_CONTROL_VALUE, &value);
        return value.of.number;
    }
    int open(std::function<void(QWidget& shownPanel)> script) {
        user = std::move(script);
        return host->open(panel, HOST_PANEL_BLOCKING | HOST_PANEL_CANCEL);
    }
    static QColor pixel(QWidget& shownPanel, int x, int y) {
        return shownPanel.grab().toImage().pixelColor(x, y);
    }

    std::unique_ptr<Panels> panels;
    const HostPanelServices* host = nullptr;
    HostPanelId panel = nullptr;
    std::function<void(QWidget& shownPanel)> user;
    std::function<void()> onEvent;

  public:
    int events = 0;
};

TEST_F(PanelServices, SurviveRecordsThatMakeNoSense) {
    EXPECT_EQ(host->addControl(panel, "SpinningControl", nullptr, ""), nullptr);
    EXPECT_EQ(host->addControl(panel, nullptr, nullptr, nullptr), nullptr);
    for (const char* type :
         {"ButtonControl", "DragButtonControl", "AreaControl", "PercentControl", "MiniRGBControl",
          "BoolControl", "NumControl", "TextControl", "PopupControl", "ChoiceControl",
          "TabChoiceControl", "MultiListBoxControl"}) {
        const HostControlId control = host->addControl(panel, type, nullptr, nullptr);
        ASSERT_NE(control, nullptr) << type;
        for (int number = -1; number < 10; ++number) {
            const auto what = static_cast<HostControlAttribute>(number);
            for (int kind = -1; kind < 30; ++kind) {
                HostValue value{kind, {}};
                host->setControl(control, what, &value);
                host->getControl(control, what, &value);
            }
            host->setControl(control, what, nullptr);
            host->getControl(control, what, nullptr);
            host->drawControl(control, number);
        }
    }
    host->setControl(nullptr, HOST_CONTROL_VALUE, nullptr);
    host->draw->displaySize(nullptr, nullptr);
    host->draw->text(panel, nullptr, 255, 1, 1);
    EXPECT_EQ(host->open(nullptr, HOST_PANEL_BLOCKING), 0);
}

TEST_F(PanelServices, ValuesComeBackAsTheyWereGivenAndFireNothing) {
    const HostControlId percent = add("PercentControl", "Size");
    const HostControlId whole = add("NumControl", "Depth");
    for (const double value : {12.3456789, -5.0, 150.0, 1e300, 0.0}) {
        set(percent, value);
        EXPECT_EQ(number(percent), value);
    }
    set(percent, 2.6);
    EXPECT_EQ(integer(percent), 3);
    set(percent, std::nan(""));
    EXPECT_EQ(integer(percent), 0);
    set(whole, std::numeric_limits<int>::max());
    EXPECT_EQ(integer(whole), std::numeric_limits<int>::max());
    HostValue color{HOST_VALUE_INTEGER_VECTOR, {}};
    std::ranges::copy(std::array{-20, 300, 7}, color.of.vector);
    const HostControlId rgb = add("MiniRGBControl");
    host->setControl(rgb, HOST_CONTROL_VALUE, &color);
    color.of.vector[0] = 1;
    host->getControl(rgb, HOST_CONTROL_VALUE, &color);
    EXPECT_EQ(std::to_array(color.of.vector), (std::array{-20, 300, 7}));
    EXPECT_EQ(events, 0);
}

TEST_F(PanelServices, ErasedAndGhostedControlsGetNoInput) {
    const HostControlId control = add("BoolControl", "On");
    const HostControlId area = add("AreaControl", "", areaOf(40, 20), 60, 60);
    const HostControlId labelled = add("NumControl", "Depth", {}, 0, 100);
    open([&](QWidget& shownPanel) {
        auto& canvas = *shownPanel.findChild<PanelCanvas*>();
        const auto clickBoth = [&](int below) {
            for (const QPoint place : {QPoint(8, 10), QPoint(80, 70 + below)})
                QTest::mouseClick(shownPanel.window()->windowHandle(), Qt::LeftButton, {},
                                  canvas.mapTo(shownPanel.window(), place));
        };
        clickBoth(3);
        clickBoth(0);
        EXPECT_EQ(events, 4);
        EXPECT_EQ(integer(area, HOST_CONTROL_MOUSE_X), 20);
        EXPECT_EQ(integer(area, HOST_CONTROL_MOUSE_Y), 6);
        for (const int mode : {HOST_DRAW_ERASE, HOST_DRAW_GHOST}) {
            for (const HostControlId each : {control, area, labelled})
                host->drawControl(each, mode);
            clickBoth(0);
            EXPECT_EQ(events, 4) << mode;
            for (const QLabel* label : shownPanel.findChildren<QLabel*>())
                EXPECT_EQ(label->isVisible(), mode == HOST_DRAW_GHOST);
        }
        host->drawControl(control, HOST_DRAW_REFRESH);
        EXPECT_FALSE(find(shownPanel, "On.check").isEnabled());
        host->drawControl(control, HOST_DRAW_NORMAL);
        clickBoth(0);
        EXPECT_EQ(events, 5);
    });
}

TEST_F(PanelServices, HandlesThatOutliveTheirPanelDoNothing) {
    HostControlId gone = add("PercentControl", "Size");
    host->destroy(panel);
    for (int times = 0; times < 2; ++times) {
        set(gone, 5);
        host->drawControl(gone, HOST_DRAW_NORMAL);
        EXPECT_EQ(integer(gone), 0);
        EXPECT_EQ(host->addControl(panel, "BoolControl", nullptr, ""), nullptr);
        host->draw->pixel(panel, 1, 2, 3, 4, 5);
        host->destroy(panel);
        panel = host->create("Second", nullptr);
        if (panels == nullptr) break;
        gone = add("NumControl", "Depth");
        panels.reset();
    }
    EXPECT_EQ(panel, nullptr);
    EXPECT_EQ(findServiceOrWindow(HOST_PANELS_SERVICE, 0), nullptr);
}

TEST_F(PanelServices, PanelsOnTopCloseWithThoseBelow) {
    for (const bool confirmed : {true, false}) {
        host->destroy(panel);
        panel = host->create("Probe", nullptr);
        add("ButtonControl", "More");
        int inner = -1;
        HostPanelId second = nullptr;
        onEvent = [&] {
            second = host->create("Second", nullptr);
            user = [&](QWidget&) { confirmed ? panels->close(true) : host->destroy(panel); };
            inner = host->open(second, HOST_PANEL_BLOCKING | HOST_PANEL_CANCEL);
        };
        const int outer = open([](QWidget& shown) { click(find(shown, "More.button")); });
        EXPECT_EQ(outer + inner, confirmed ? 2 : 0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (confirmed) host->destroy(second);
        EXPECT_EQ(host->addControl(second, "BoolControl", nullptr, ""), nullptr);
    }
}

int asked = 0, rows = 1000;
bool marked = false;

TEST_F(PanelServices, OnlyVisibleRowsOfALongListAreAskedAndShowWhatAnEventChanged) {
    HostControlDescription list{HOST_VALUE_MULTI_LIST, {}};
    list.of.multiList = {100,
                         12,
                         nullptr,
                         [](void*) { return rows; },
                         [](void*, int, int column) {
                             ++asked;
                             return column == 0 && marked ? "\x03(i:MIMG_CHECKMARK)" : "row";
                         },
                         [](void*, int column) { return column < 2 ? 40 : 0; }};
    add("MultiListBoxControl", "Rows", list);
    open([&](QWidget& shownPanel) {
        asked = 0;
        shownPanel.grab();
        EXPECT_GT(asked, 0);
        EXPECT_LT(asked, 400);
        auto& view = *find(shownPanel, "Rows.list").findChild<QTableView*>();
        for (int times = 0; times < 2; ++times)
            QTest::keyClick(&view, Qt::Key_End, Qt::ControlModifier);
        const int top = view.rowAt(0);
        int painted = 0;
        QObject::connect(view.model(), &QAbstractItemModel::dataChanged, [&] { ++painted; });
        const QImage before = view.grab().toImage();
        onEvent = [] { marked = true; };
        QTest::keyClick(&view, Qt::Key_Space);
        EXPECT_TRUE(painted == 1 && view.grab().toImage() != before);
        EXPECT_EQ(view.rowAt(0), top);
        onEvent = [] { rows = 1001; };
        QTest::keyClick(&view, Qt::Key_Space);
        EXPECT_EQ(view.currentIndex().row(), 999);
    });
    EXPECT_EQ(events, 2);
}

TEST_F(PanelServices, DrawingIsClampedAndPaintedAndClearedByItsArea) {
    const HostControlId area = add("AreaControl", "", areaOf(40, 12), 100, 50);
    Painted painted;
    open([&](QWidget& shownPanel) {
        QTest::qWait(20);  // until it is shown as a whole
        auto& canvas = *shownPanel.findChild<PanelCanvas*>();
        canvas.installEventFilter(&painted);
        const auto repaints = [&](QPoint place) {
            painted.region = {};
            return QTest::qWaitFor([&, place] { return painted.region.contains(place); }, 500);
        };
        host->draw->text(panel, "both", 255, 30, 40);
        host->draw->pixel(panel, 300, -4, 128, 10, 10);
        EXPECT_TRUE(repaints({10, 10}));
        EXPECT_EQ(pixel(shownPanel, 10, 10), QColor(255, 0, 128));
        host->draw->pixel(panel, 1, 1, 1, -1, 100000);
        host->draw->text(panel, "|", 255, 98, 52);
        host->draw->text(panel, "keep", 255, 10, 52);
        EXPECT_TRUE(repaints({12, 54}));
        for (const int x : {100, 139})
            host->draw->pixel(panel, 255, 255, 0, x, 60);
        for (int times = 0; times < 2; ++times)
            host->draw->border(panel, 0, 5, 5, 100, 0);
        host->drawControl(area, HOST_DRAW_GHOST);
        EXPECT_TRUE(repaints({110, 61}));
        EXPECT_EQ(canvas.drawing().texts().size(), 3U);
        EXPECT_EQ(pixel(shownPanel, 139, 60), QColor(Qt::yellow));
        canvas.clear({100, 50, 40, 12});
        EXPECT_TRUE(repaints({101, 51}));
        EXPECT_NE(pixel(shownPanel, 139, 60), QColor(Qt::yellow));
        EXPECT_EQ(canvas.drawing().texts().size(), 2U);
        EXPECT_EQ(canvas.drawing().borders().size(), 1U);
        host->draw->text(panel, "|", 255, 98, 52);
        host->drawControl(area, HOST_DRAW_NORMAL);
        EXPECT_EQ(canvas.drawing().texts().size(), 2U);
    });
}

int pixelsOf(const QImage& shown, const QColor& color) {
    int count = 0;
    for (int i = 0; i < shown.width() * shown.height(); ++i) {
        const QColor at = shown.pixelColor(i % shown.width(), i / shown.width());
        const int off = std::abs(at.red() - color.red()) + std::abs(at.green() - color.green()) +
                        std::abs(at.blue() - color.blue());
        count += off < 60 ? 1 : 0;
    }
    return count;
}

TEST_F(PanelServices, ColorsShowWhatIsChosenFocusedAndOutOfReach) {
    const HostControlId control = add("ChoiceControl", "Mode", choice());
    const HostControlId tabs = add("TabChoiceControl", "", choice(), 0, 25);
    const HostControlId percent = add("PercentControl", "Size", {}, 0, 60);
    const HostControlId rgb = add("MiniRGBControl", "", {}, 0, 90);
    const HostControlId strip = add("AreaControl", "", areaOf(60, 20), 0, 120);
    host->draw->text(panel, "WWWW", 255, 100, 120);
    host->draw->text(panel, "WWWW", 1, 100, 140);
    PanelDrawing borders;
    for (const int height : {20, 90, 40})
        borders.add(PanelDrawing::Border{0, {0, height, 50, height}});
    EXPECT_EQ(borders.frame()->top(), 90) << "the largest";
    set(control, 1);
    open([&](QWidget& shownPanel) {
        QPalette colors = shownPanel.palette();
        colors.setColor(QPalette::Highlight, Qt::green);
        colors.setColor(QPalette::HighlightedText, Qt::red);
        colors.setColor(QPalette::WindowText, Qt::blue);
        shownPanel.setPalette(colors);
        const auto buttons = find(shownPanel, "Mode.choice").findChildren<QPushButton*>();
        EXPECT_EQ(buttons[0]->size(), buttons[1]->size());
        const auto colored = [&](int button, const QColor& color) {
            return pixelsOf(buttons[button]->grab().toImage(), color);
        };
        buttons[0]->setFocus();
        const int text = colored(1, Qt::red);
        EXPECT_GT(text, 3);
        EXPECT_GT(colored(1, Qt::green), 300);
        EXPECT_EQ(colored(0, Qt::red) + colored(0, Qt::green), 0);
        buttons[1]->setFocus();
        EXPECT_GT(colored(1, Qt::red), text + 2 * (buttons[1]->width() - 10))
            << "a frame about the text";
        host->drawControl(control, HOST_DRAW_GHOST);
        EXPECT_EQ(colored(1, Qt::red) + colored(1, Qt::green), 0);
        host->drawControl(control, HOST_DRAW_NORMAL);
        set(control, 7);
        EXPECT_FALSE(buttons[1]->isChecked());
        for (const int button : {0, 1, 1})
            click(*buttons[button]);
        EXPECT_TRUE(buttons[1]->isChecked() && !buttons[0]->isChecked());
        EXPECT_EQ(integer(control), 1);
        EXPECT_EQ(events, 2);
        auto& bar = find<QTabBar>(shownPanel, "tab");
        set(tabs, 1);
        set(tabs, 9);
        EXPECT_EQ(events, 2);
        QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.tabRect(bar.currentIndex()).center());
        EXPECT_EQ(integer(tabs), bar.currentIndex()) << "what is in front can be chosen";

        const QImage canvas = shownPanel.grab().toImage();
        EXPECT_GT(pixelsOf(canvas.copy(100, 120, 40, 14), Qt::blue), 3);
        EXPECT_EQ(pixelsOf(canvas.copy(100, 140, 40, 14), Qt::blue), 0);
        auto& slider = find(shownPanel, "Size.percent");
        for (const int part : {20, 80}) {
            set(percent, part);
            const QColor right =
                slider.grab().toImage().pixelColor(slider.width() * 6 / 10, slider.height() - 4);
            EXPECT_EQ(right == QColor(Qt::green), part == 80) << "its bar reaches so far";
        }
        auto& area = find(shownPanel, "area");
        area.setFocus(Qt::MouseFocusReason);
        EXPECT_NE(shownPanel.grab().toImage().copy(area.geometry()), canvas.copy(area.geometry()));
        for (const Qt::Key key : {Qt::Key_End, Qt::Key_Right, Qt::Key_Left, Qt::Key_Space})
            QTest::keyClick(&area, key);
        EXPECT_EQ(integer(strip, HOST_CONTROL_MOUSE_X), 59) << "its end is the last place";
        HostValue color{HOST_VALUE_INTEGER_VECTOR, {}};
        color.of.vector[1] = 255;
        Painted painted;
        auto* patch = find(shownPanel, "rgb").findChild<QWidget*>();
        QTest::qWait(20);
        patch->installEventFilter(&painted);
        host->setControl(rgb, HOST_CONTROL_VALUE, &color);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !painted.region.isEmpty(); }, 500));
        EXPECT_EQ(patch->grab().toImage().pixelColor(15, 8), QColor(Qt::green));
    });
}

TEST_F(PanelServices, TextsAreShownAsTheyAreAndHeadingsBold) {
    const char* texts[] = {"<b>Size</b>", "Size.", "Sizes and sizes:", "Sizes and sizes.",
                           "Two\nlines"};
    for (const char*& line : texts) {
        const char* lines[] = {line, nullptr};
        HostControlDescription text{HOST_VALUE_TEXT, {}};
        text.of.text.lines = lines;
        add("TextControl", "Beside", text);
    }
    open([&](QWidget& shownPanel) {
        std::map<QString, int> widths;
        for (const QLabel* label : shownPanel.findChildren<QLabel*>()) {
            widths[label->text()] = label->sizeHint().width();
            EXPECT_GE(label->height(), label->sizeHint().height()) << label->text().toStdString();
        }
        EXPECT_TRUE(widths.contains("Beside") && widths.contains("Two\nlines"));
        EXPECT_GT(widths["<b>Size</b>"], widths["Size."] + 10);
        EXPECT_GT(widths["Sizes and sizes:"], widths["Sizes and sizes."]);
    });
}

TEST_F(PanelServices, AWindowStaysOnItsScreenScrollsAndPassesKeysOnAndDrawsAnew) {
    host->setPanelUserData(panel, this);
    host->setPanelDraw(
        panel, [](HostPanelId, void* self) { ++static_cast<PanelServices*>(self)->events; });
    const QRect screen = QApplication::primaryScreen()->availableGeometry();
    for (const auto& [attribute, value] : {std::pair(HOST_PANEL_X, 10000),
                                           {HOST_PANEL_Y, 20},
                                           {HOST_PANEL_WIDTH, 300},
                                           {HOST_PANEL_HEIGHT, 3 * screen.height()}})
        host->setPanel(panel, attribute, value);
    add("NumControl", "Depth");
    open([&](QWidget& shownPanel) {
        EXPECT_LT(shownPanel.window()->geometry().right(), screen.right() + 8)
            << "but for its frame";
        const auto& canvas = *shownPanel.findChild<PanelCanvas*>();
        EXPECT_EQ(canvas.visibleRegion().boundingRect().width(), canvas.width())
            << "the scroll bar stands beside it";
        const int before = events;
        shownPanel.setPalette(QPalette(Qt::black));
        QCoreApplication::processEvents();
        EXPECT_EQ(events, before + 1);
        for (const Qt::Key key : {Qt::Key_A, Qt::Key_Escape})
            QTest::keyClick(shownPanel.window(), key);
        EXPECT_FALSE(shownPanel.isVisible());
    });
}

TEST_F(PanelServices, ThePickerKeepsColorsThatWereNotChanged) {
    auto* pick =
        reinterpret_cast<HostColorPicker*>(findServiceOrWindow(HOST_COLOR_PICKER_SERVICE, 0));
    HostColorPick request{0, "Ink", 0.501F, 2.0F, std::nanf(""), this, nullptr};
    request.liveUpdate = [](void* self, float red, float, float) {
        if (red > 0.9F) ++static_cast<PanelServices*>(self)->events;
    };
    const auto whilePicking = [&](const std::function<void(QColorDialog&)>& hand) {
        whenPicking(hand);
        EXPECT_EQ(pick(HOST_COLOR_PICKER_VERSION, &request), 0);
    };
    whilePicking([](QColorDialog& dialog) { dialog.accept(); });
    EXPECT_GT(request.result, 0);
    EXPECT_EQ(request.red, 0.501F);
    EXPECT_EQ(request.green, 2.0F);
    whilePicking([&](QColorDialog& dialog) {
        HostColorPick second = request;
        QTimer::singleShot(0, &dialog, [&] {
            auto* top = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (top != &dialog) top->reject();
        });
        EXPECT_NE(pick(HOST_COLOR_PICKER_VERSION, &second), 0) << "one at a time";
        dialog.setCurrentColor(Qt::white);
        dialog.reject();
    });
    EXPECT_EQ(request.result, 0);
    EXPECT_EQ(request.red, 0.501F);
    EXPECT_GE(events, 1);
    whilePicking([&](QColorDialog& dialog) {
        panels->close(false);
        EXPECT_FALSE(dialog.isVisible()) << "it closes with everything";
        dialog.reject();
    });
}

TEST_F(PanelServices, NumbersTakeTypingStepsDragsAndTheWheelOnlyInFocus) {
    const HostControlId control = add("NumControl", "Depth");
    set(control, 4);
    add("PopupControl", "Mode", choice());
    open([&](QWidget& shownPanel) {
        auto& field = find(shownPanel, "Depth.number");
        field.clearFocus();
        const auto wheel = [](QWidget& over, int turn = -120) {
            QWheelEvent event(over.rect().center(), over.mapToGlobal(over.rect().center()), {},
                              {0, turn}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(&over, &event);
        };
        wheel(field);
        wheel(find(shownPanel, "Mode.popup"));
        EXPECT_EQ(events, 0);
        for (const char* text : {"12x", "inf", "nan"}) {
            type(shownPanel, "Depth.number", text);
            EXPECT_EQ(integer(control), 4) << text;
        }
        type(shownPanel, "Depth.number", "13,4");
        for (const int turn : {-120, -60, -60})
            wheel(field, turn);
        EXPECT_EQ(integer(control), 11);
        QTest::keyClick(&field, Qt::Key_PageDown);
        EXPECT_EQ(integer(control), 1);
        QTest::keyClick(&field, Qt::Key_PageDown);
        EXPECT_EQ(integer(control), 0);
        EXPECT_EQ(events, 5);
        drag(field, 0);
        EXPECT_EQ(events, 5);
        QTest::keyClicks(&field, "14");
        field.clearFocus();
        EXPECT_EQ(integer(control), 14) << "entered by leaving it";
        drag(field, 24);
        EXPECT_EQ(integer(control), 20) << "a quarter a pixel";
        drag(field, 80, Qt::ShiftModifier);
        EXPECT_EQ(integer(control), 22) << "a tenth of that";
        QTest::mousePress(&field, Qt::LeftButton, {}, {20, 9});
        QMouseEvent moved(QEvent::MouseMove, {60, 9}, field.mapToGlobal(QPointF(60, 9)),
                          Qt::NoButton, Qt::NoButton, {});
        QApplication::sendEvent(&field, &moved);
        EXPECT_EQ(integer(control), 22) << "the button was let go where nobody heard of it";
    });
}

}  // namespace
}  // namespace tavora::studio::testing
