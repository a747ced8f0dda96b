// The panel services as modules other than ours may use and misuse them.

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPaintEvent>
#include <QPushButton>
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
#include "studio/panels/panels.h"
#include "studio/services/registry.h"
#include "tests/panels/settings_rig.h"

namespace tavora::studio::testing {
namespace {

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
                      const HostControlDescription& description = {}) {
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
        return made;
    }
    void move(HostControlId control, int x, int y) {
        HostValue value{HOST_VALUE_INTEGER, {}};
        value.of.integer = x;
        host->setControl(control, HOST_CONTROL_X, &value);
        value.of.integer = y;
        host->setControl(control, HOST_CONTROL_Y, &value);
    }
    void setInteger(HostControlId control, int integer) {
        HostValue value{HOST_VALUE_INTEGER, {}};
        value.of.integer = integer;
        host->setControl(control, HOST_CONTROL_VALUE, &value);
    }
    int integer(HostControlId control, HostControlAttribute what = HOST_CONTROL_VALUE) {
        HostValue value{HOST_VALUE_INTEGER, {}};
        host->getControl(control, what, &value);
        return value.of.integer;
    }
    double number(HostControlId control) {
        HostValue value{HOST_VALUE_FLOAT, {}};
        host->getControl(control, HOST_CONTROL_VALUE, &value);
        return value.of.number;
    }
    void setNumber(HostControlId control, double number) {
        HostValue value{HOST_VALUE_FLOAT, {}};
        value.of.number = number;
        host->setControl(control, HOST_CONTROL_VALUE, &value);
    }
    int open(std::function<void(QWidget& shownPanel)> script) {
        user = std::move(script);
        return host->open(panel, HOST_PANEL_BLOCKING | HOST_PANEL_CANCEL);
    }

    std::unique_ptr<Panels> panels;
    const HostPanelServices* host = nullptr;
    HostPanelId panel = nullptr;
    std::function<void(QWidget& shownPanel)> user;
    std::function<void()> onEvent;

  public:
    int events = 0;
};

constexpr const char* kClasses[] = {"ButtonControl",  "DragButtonControl", "AreaControl",
                                    "PercentControl", "MiniRGBControl",    "BoolControl",
                                    "NumControl",     "TextControl",       "PopupControl",
                                    "ChoiceControl",  "TabChoiceControl",  "MultiListBoxControl"};

TEST_F(PanelServices, SurviveRecordsThatMakeNoSense) {
    EXPECT_EQ(host->addControl(panel, "SpinningControl", nullptr, ""), nullptr);
    EXPECT_EQ(host->addControl(panel, nullptr, nullptr, nullptr), nullptr);
    for (const char* type : kClasses) {
        const HostControlId control = host->addControl(panel, type, nullptr, nullptr);
        ASSERT_NE(control, nullptr) << type;
        for (int attribute = -1; attribute < 10; ++attribute) {
            for (int kind = -1; kind < 30; ++kind) {
                HostValue value{kind, {}};
                const auto what = static_cast<HostControlAttribute>(attribute);
                host->setControl(control, what, &value);
                host->getControl(control, what, &value);
            }
            host->setControl(control, static_cast<HostControlAttribute>(attribute), nullptr);
            host->getControl(control, static_cast<HostControlAttribute>(attribute), nullptr);
        }
        for (int mode = -1; mode < 6; ++mode)
            host->drawControl(control, mode);
    }
    host->setControl(nullptr, HOST_CONTROL_VALUE, nullptr);
    host->draw->displaySize(nullptr, nullptr);
    host->draw->text(panel, nullptr, 255, 1, 1);
    EXPECT_EQ(host->open(nullptr, HOST_PANEL_BLOCKING), 0);
}

TEST_F(PanelServices, ValuesComeBackAsTheyWereGivenAndFireNothing) {
    const HostControlId percent = add("PercentControl", "Size");
    const HostControlId number = add("NumControl", "Depth");
    const char* items[] = {"Off", "On", nullptr};
    HostControlDescription choice{HOST_VALUE_CHOICE, {}};
    choice.of.choice.items = items;
    for (const double value : {12.3456789, -5.0, 150.0, 1e300, 0.0}) {
        setNumber(percent, value);
        EXPECT_EQ(this->number(percent), value);
    }
    setNumber(percent, std::nan(""));
    EXPECT_EQ(integer(percent), 0);
    setInteger(number, std::numeric_limits<int>::max());
    EXPECT_EQ(integer(number), std::numeric_limits<int>::max());
    for (const char* type : {"PopupControl", "ChoiceControl", "TabChoiceControl", "BoolControl"}) {
        const HostControlId control = add(type, "", choice);
        for (const int value : {1, 7, -3, 0}) {
            setInteger(control, value);
            EXPECT_EQ(integer(control), value) << type;
        }
    }
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
    HostControlDescription size{HOST_VALUE_AREA, {}};
    size.of.area = {40, 20};
    const HostControlId area = add("AreaControl", "", size);
    move(area, 60, 60);
    open([&](QWidget& shownPanel) {
        auto& canvas = *shownPanel.findChild<PanelCanvas*>();
        const auto clickBoth = [&] {
            for (const QPoint place : {QPoint(8, 10), QPoint(80, 70)})
                QTest::mouseClick(shownPanel.window()->windowHandle(), Qt::LeftButton, {},
                                  canvas.mapTo(shownPanel.window(), place));
        };
        clickBoth();
        EXPECT_EQ(events, 2);
        EXPECT_EQ(integer(area, HOST_CONTROL_MOUSE_X), 20);
        EXPECT_EQ(integer(area, HOST_CONTROL_MOUSE_Y), 6);
        for (const int mode : {HOST_DRAW_ERASE, HOST_DRAW_GHOST}) {
            host->drawControl(control, mode);
            host->drawControl(area, mode);
            clickBoth();
            EXPECT_EQ(events, 2) << mode;
        }
        host->drawControl(control, HOST_DRAW_REFRESH);
        EXPECT_FALSE(find(shownPanel, "On.check").isEnabled());
        host->drawControl(control, HOST_DRAW_NORMAL);
        clickBoth();
        EXPECT_EQ(events, 3);
    });
}

TEST_F(PanelServices, HandlesThatOutliveTheirPanelDoNothing) {
    const HostControlId control = add("PercentControl", "Size");
    host->destroy(panel);
    setInteger(control, 5);
    host->drawControl(control, HOST_DRAW_NORMAL);
    EXPECT_EQ(integer(control), 0);
    EXPECT_EQ(host->addControl(panel, "BoolControl", nullptr, ""), nullptr);
    host->draw->pixel(panel, 1, 2, 3, 4, 5);
    host->destroy(panel);
    panel = host->create("Second", nullptr);
    const HostControlId other = add("NumControl", "Depth");
    panels.reset();
    for (const HostControlId gone : {control, other}) {
        setInteger(gone, 5);
        EXPECT_EQ(integer(gone), 0);
    }
    EXPECT_EQ(host->create("Late", nullptr), nullptr);
    EXPECT_EQ(findServiceOrWindow(HOST_PANELS_SERVICE, 0), nullptr);
}

TEST_F(PanelServices, APanelMayBeDestroyedInItsOwnEvent) {
    add("ButtonControl", "Gone");
    onEvent = [this] { host->destroy(panel); };
    EXPECT_EQ(open([](QWidget& shownPanel) { click(find(shownPanel, "Gone.button")); }), 0);
    EXPECT_EQ(events, 1);
    EXPECT_EQ(panels->openPanel(), nullptr);
}

TEST_F(PanelServices, CloseConfirmsEveryOpenPanel) {
    add("ButtonControl", "More");
    int inner = -1;
    onEvent = [&] {
        const HostPanelId second = host->create("Second", nullptr);
        user = [&](QWidget& shownPanel) {
            EXPECT_EQ(panels->openPanel(), &shownPanel);
            panels->close(true);
        };
        inner = host->open(second, HOST_PANEL_BLOCKING | HOST_PANEL_CANCEL);
        host->destroy(second);
    };
    EXPECT_EQ(open([](QWidget& shownPanel) { click(find(shownPanel, "More.button")); }), 1);
    EXPECT_EQ(inner, 1);
}

TEST_F(PanelServices, APanelTakesThoseOverItAlong) {
    add("ButtonControl", "More");
    HostPanelId second = nullptr;
    onEvent = [&] {
        second = host->create("Second", nullptr);
        user = [&](QWidget&) { host->destroy(panel); };
        EXPECT_EQ(host->open(second, HOST_PANEL_BLOCKING), 0);
    };
    EXPECT_EQ(open([](QWidget& shownPanel) { click(find(shownPanel, "More.button")); }), 0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(host->addControl(second, "BoolControl", nullptr, ""), nullptr);
}

int asked = 0;

TEST_F(PanelServices, OnlyVisibleRowsOfALongListAreAsked) {
    HostControlDescription list{HOST_VALUE_MULTI_LIST, {}};
    list.of.multiList = {100,
                         12,
                         nullptr,
                         [](void*) { return 1000; },
                         [](void*, int, int) -> const char* {
                             ++asked;
                             return "row";
                         },
                         [](void*, int column) { return column < 2 ? 40 : 0; }};
    add("MultiListBoxControl", "Rows", list);
    open([&](QWidget& shownPanel) {
        asked = 0;
        shownPanel.grab();
        EXPECT_GT(asked, 0);
        EXPECT_LT(asked, 400);
        auto& view = *find(shownPanel, "Rows.list").findChild<QTableView*>();
        QTest::keyClick(&view, Qt::Key_End, Qt::ControlModifier);
        const int top = view.rowAt(0);
        QTest::keyClick(&view, Qt::Key_Space);
        EXPECT_EQ(view.rowAt(0), top);
    });
    EXPECT_EQ(events, 1);
}

TEST_F(PanelServices, DrawingIsClampedAndClearedByItsArea) {
    HostControlDescription size{HOST_VALUE_AREA, {}};
    size.of.area = {40, 12};
    const HostControlId area = add("AreaControl", "", size);
    move(area, 100, 50);
    struct Painted : QObject {
        QRegion region;
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::Paint)
                region |= static_cast<QPaintEvent*>(event)->region();
            return false;
        }
    } painted;
    open([&](QWidget& shownPanel) {
        QTest::qWait(20);  // until it is shown as a whole
        shownPanel.findChild<PanelCanvas*>()->installEventFilter(&painted);
        host->draw->pixel(panel, 300, -4, 128, 10, 10);
        host->draw->text(panel, "both", 255, 30, 40);
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return painted.region.contains(QPoint(10, 10)) &&
                   painted.region.contains(QPoint(35, 45));
        }));
        host->draw->pixel(panel, 1, 1, 1, -1, 100000);
        EXPECT_EQ(shownPanel.grab().toImage().pixelColor(10, 10), QColor(255, 0, 128));
        const auto& drawing = shownPanel.findChild<PanelCanvas*>()->drawing();
        host->draw->text(panel, "|", 255, 98, 52);
        host->draw->text(panel, "keep", 255, 10, 52);
        host->draw->border(panel, 0, 5, 5, 100, 0);
        host->draw->border(panel, 0, 5, 5, 100, 0);
        host->drawControl(area, HOST_DRAW_GHOST);
        EXPECT_EQ(drawing.texts().size(), 3U);
        host->drawControl(area, HOST_DRAW_NORMAL);
        EXPECT_EQ(drawing.texts().size(), 2U);
        EXPECT_EQ(drawing.borders().size(), 1U);
    });
}

/// How many pixels of a widget are of that colour, about.
int pixelsOf(QWidget& widget, const QColor& color) {
    const QImage shown = widget.grab().toImage();
    int count = 0;
    for (int i = 0; i < shown.width() * shown.height(); ++i) {
        const QColor at = shown.pixelColor(i % shown.width(), i / shown.width());
        const int off = std::abs(at.red() - color.red()) + std::abs(at.green() - color.green()) +
                        std::abs(at.blue() - color.blue());
        count += off < 60 ? 1 : 0;
    }
    return count;
}

TEST_F(PanelServices, AChoiceShowsWhatIsChosenAndWhetherItCanBe) {
    const char* items[] = {"Of", "Everything", nullptr};
    HostControlDescription choice{HOST_VALUE_CHOICE, {}};
    choice.of.choice.items = items;
    const HostControlId control = add("ChoiceControl", "Mode", choice);
    setInteger(control, 1);
    open([&](QWidget& shownPanel) {
        QPalette colors = shownPanel.palette();
        colors.setColor(QPalette::Highlight, Qt::green);
        colors.setColor(QPalette::HighlightedText, Qt::red);
        shownPanel.setPalette(colors);
        const auto buttons = find(shownPanel, "Mode.choice").findChildren<QPushButton*>();
        EXPECT_EQ(buttons[0]->size(), buttons[1]->size());
        const auto inks = [&](int button) { return pixelsOf(*buttons[button], Qt::red); };
        buttons[0]->setFocus();
        const int text = inks(1);
        EXPECT_GT(text, 3);
        EXPECT_GT(pixelsOf(*buttons[1], Qt::green), 300);
        EXPECT_EQ(inks(0) + pixelsOf(*buttons[0], Qt::green), 0);
        buttons[1]->setFocus();
        EXPECT_GT(inks(1), text + 2 * (buttons[1]->width() - 10)) << "a frame about the text";
        EXPECT_GT(pixelsOf(*buttons[1], Qt::green), 300);
        host->drawControl(control, HOST_DRAW_GHOST);
        EXPECT_EQ(inks(1) + pixelsOf(*buttons[1], Qt::green), 0);
        host->drawControl(control, HOST_DRAW_NORMAL);
        setInteger(control, 7);
        for (const int button : {0, 1})
            click(*buttons[button]);
        EXPECT_TRUE(buttons[1]->isChecked() && !buttons[0]->isChecked());
        EXPECT_EQ(integer(control), 1);
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
        EXPECT_EQ(widths.count("Beside"), 1U);
        EXPECT_EQ(widths.count("Two\nlines"), 1U);
        EXPECT_GT(widths["<b>Size</b>"], widths["Size."] + 10);
        EXPECT_GT(widths["Sizes and sizes:"], widths["Sizes and sizes."]);
    });
}

TEST_F(PanelServices, TheDrawCallbackRunsAgainForAnotherPalette) {
    host->setPanelUserData(panel, this);
    host->setPanelDraw(
        panel, [](HostPanelId, void* self) { ++static_cast<PanelServices*>(self)->events; });
    open([&](QWidget& shownPanel) {
        const int before = events;
        shownPanel.setPalette(QPalette(Qt::black));
        QCoreApplication::processEvents();
        EXPECT_EQ(events, before + 1);
    });
}

TEST_F(PanelServices, ThePickerKeepsColorsThatWereNotChanged) {
    auto* pick =
        reinterpret_cast<HostColorPicker*>(findServiceOrWindow(HOST_COLOR_PICKER_SERVICE, 0));
    HostColorPick request{0, "Ink", 0.501F, 2.0F, std::nanf(""), this, nullptr};
    EXPECT_NE(pick(3, &request), 0);
    EXPECT_NE(pick(HOST_COLOR_PICKER_VERSION, nullptr), 0);
    request.liveUpdate = [](void* self, float red, float, float) {
        if (red > 0.9F) ++static_cast<PanelServices*>(self)->events;
    };
    whenPicking([](QColorDialog& dialog) { dialog.accept(); });
    EXPECT_EQ(pick(HOST_COLOR_PICKER_VERSION, &request), 0);
    EXPECT_GT(request.result, 0);
    EXPECT_EQ(request.red, 0.501F);
    EXPECT_EQ(request.green, 2.0F);
    whenPicking([](QColorDialog& dialog) {
        dialog.setCurrentColor(Qt::white);
        dialog.reject();
    });
    EXPECT_EQ(pick(HOST_COLOR_PICKER_VERSION, &request), 0);
    EXPECT_EQ(request.result, 0);
    EXPECT_EQ(request.red, 0.501F);
    EXPECT_GE(events, 1);
    whenPicking([&](QColorDialog& dialog) {
        panels->close(false);
        EXPECT_FALSE(dialog.isVisible()) << "it closes with everything";
        dialog.reject();
    });
    EXPECT_EQ(pick(HOST_COLOR_PICKER_VERSION, &request), 0);
}

TEST_F(PanelServices, NumbersTakeTypingStepsAndTheWheelOnlyInFocus) {
    const HostControlId control = add("NumControl", "Depth");
    setInteger(control, 4);
    const char* items[] = {"Off", "On", nullptr};
    HostControlDescription choice{HOST_VALUE_CHOICE, {}};
    choice.of.choice.items = items;
    add("PopupControl", "Mode", choice);
    open([&](QWidget& shownPanel) {
        auto& field = find(shownPanel, "Depth.number");
        field.clearFocus();
        const auto wheel = [](QWidget& over) {
            QWheelEvent event(over.rect().center(), over.mapToGlobal(over.rect().center()), {},
                              {0, -120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(&over, &event);
        };
        wheel(field);
        wheel(find(shownPanel, "Mode.popup"));
        EXPECT_EQ(events, 0);
        type(shownPanel, "Depth.number", "12x");
        EXPECT_EQ(integer(control), 4);
        type(shownPanel, "Depth.number", "12");
        wheel(field);
        EXPECT_EQ(integer(control), 11);
        QTest::keyClick(&field, Qt::Key_PageDown);
        EXPECT_EQ(integer(control), 1);
        QTest::keyClick(&field, Qt::Key_PageDown);
        EXPECT_EQ(integer(control), 0);
        EXPECT_EQ(events, 4);
        drag(field, 0);
        EXPECT_EQ(events, 4);
    });
}

}  // namespace
}  // namespace tavora::studio::testing
