#include "tests/support/fake_panels.h"

#include "panel/controls/controls.h"
#include "plugin/record/services.h"

namespace tavora::testing {
namespace {

FakePanels* panels = nullptr;

FakeControl& controlOf(HostControlId id) {
    return *reinterpret_cast<FakeControl*>(id);
}

int slotOf(HostControlId id) {
    const auto* found = std::find(std::begin(control), std::end(control), id);
    return found == std::end(control) ? -1 : static_cast<int>(found - control);
}

/// The numbers, with blanks between them.
std::string spaced(std::initializer_list<int> numbers) {
    std::string text;
    for (const int number : numbers)
        text += (text.empty() ? "" : " ") + std::to_string(number);
    return text;
}

/// Type, numbers and texts.
std::string textOf(const HostControlDescription& description) {
    const int type = description.type;
    const auto& of = description.of;
    const bool isChoice = type == HOST_VALUE_CHOICE, isText = type == HOST_VALUE_TEXT;
    std::string text = isChoice || isText ? spaced({type, isChoice ? of.choice.width : 0})
                                          : spaced({type, of.area.width, of.area.height});
    const char** lines = isChoice ? of.choice.items : of.text.lines;
    for (; (isChoice || isText) && *lines != nullptr; ++lines)
        text += std::string("/") + *lines;
    return text;
}

std::string textOf(const HostValue& value) {
    const auto& v = value.of.vector;
    if (value.type == HOST_VALUE_FLOAT) return std::to_string(value.of.number);
    if (value.type == HOST_VALUE_INTEGER_VECTOR) return spaced({v[0], v[1], v[2]});
    return value.type == 0 ? "" : spaced({value.of.integer});
}

HostPanelId createPanel(const char* title, void* data) {
    EXPECT_EQ(data, nullptr);
    if (!panels->panelsCanBeMade) return nullptr;
    panels->opened.emplace_back(title);
    if (++panels->livePanels == 1) panels->controls.clear();
    return identity<HostPanelId>(static_cast<std::uintptr_t>(panels->livePanels));
}

HostControlId addControl(HostPanelId, const char* controlClass,
                         const HostControlDescription* description, const char* label) {
    if (!panels->controlsCanBeMade) return nullptr;
    FakeControl& made = panels->controls.emplace_back();
    made.made = std::string(controlClass) + " \"" + label + "\" " + textOf(*description);
    return reinterpret_cast<HostControlId>(&made);
}

void setControl(HostControlId id, HostControlAttribute attribute, const HostValue* value) {
    FakeControl& target = controlOf(id);
    if (attribute == HOST_CONTROL_X || attribute == HOST_CONTROL_Y) {
        panels->log.push_back((attribute == HOST_CONTROL_X ? "x " : "y ") +
                              spaced({slotOf(id), value->of.integer}));
    } else if (attribute == HOST_CONTROL_USER_DATA) {
        target.userData = value->of.pointer;
    } else if (attribute == HOST_CONTROL_EVENT) {
        target.event = value->of.event;
    } else {
        EXPECT_EQ(attribute, HOST_CONTROL_VALUE);
        target.value = *value;
    }
}

void getControl(HostControlId id, HostControlAttribute attribute, HostValue* value) {
    if (attribute == HOST_CONTROL_MOUSE_X) {
        value->of.integer = controlOf(id).mouseX;
        return;
    }
    ASSERT_EQ(attribute, HOST_CONTROL_VALUE);
    ASSERT_EQ(value->type, controlOf(id).value.type) << "asked for a value of another kind";
    *value = controlOf(id).value;
}

const HostDrawFunctions drawing = {
    [](HostPanelId, int red, int green, int blue, int x, int y) {
        ++panels->pixels;
        panels->painted[{x, y}] = {red, green, blue};
    },
    [](HostPanelId, int indent, int x, int y, int width, int height) {
        panels->borders.push_back(spaced({indent, x, y, width, height}));
    },
    [](HostPanelId, const char* text, int color, int x, int y) {
        panels->marks.push_back(text + (" " + spaced({x, y, color})));
    },
    [](int* width, int* height) {
        *width = 1919;
        *height = 301;
    }};

const HostPanelServices services = {
    createPanel,
    [](HostPanelId) { --panels->livePanels; },
    [](HostPanelId, int mode) {
        panels->opened.back() += " " + std::to_string(mode);
        return panels->livePanels == 1 && panels->whileOpen && panels->whileOpen() ? 1 : 0;
    },
    addControl,
    setControl,
    getControl,
    [](HostControlId id, int mode) {
        controlOf(id).mode = mode;
        panels->log.push_back("draw " + spaced({slotOf(id), mode}));
    },
    [](HostPanelId, HostPanelAttribute attribute, int value) {
        panels->attributes.push_back(spaced({attribute, value}));
    },
    [](HostPanelId, HostPanelDraw* draw) { panels->draw = draw; },
    [](HostPanelId, void* data) { panels->drawData = data; },
    &drawing};

int pickColorNow(int version, HostColorPick* request) {
    EXPECT_EQ(version, 4);
    EXPECT_TRUE(request->result == 0 && !request->data && !request->liveUpdate);
    panels->opened.emplace_back(request->title);
    return panels->onPick ? panels->onPick(*request) : 1;
}

}  // namespace

FakePanels::FakePanels(FakeHost& host) {
    static HostRasterServices raster = {};
    panels = this;
    host.moreServices = {{"LWPanelServices", const_cast<HostPanelServices*>(&services)},
                         {"RasterServices", &raster},
                         {"Color Picker", reinterpret_cast<void*>(&pickColorNow)}};
    global = FakeHost::lookup;
}

FakePanels::~FakePanels() {
    EXPECT_EQ(livePanels, 0);
    global = nullptr;
    panels = nullptr;
}

FakeControl& FakePanels::at(int slot) {
    return controlOf(control[slot]);
}

Names FakePanels::shown() {
    Names values(controlSlots);
    for (std::size_t slot = 0; slot < values.size(); ++slot)
        if (control[slot] != nullptr) values[slot] = textOf(controlOf(control[slot]).value);
    return values;
}

void FakePanels::setInteger(int slot, int value) {
    at(slot).value.type = HOST_VALUE_INTEGER;
    at(slot).value.of.integer = value;
    press(slot);
}

void FakePanels::setPercent(int slot, double value) {
    at(slot).value.of.number = value;
    press(slot);
}

void FakePanels::dragTo(int slot, int coordinate, int counter) {
    at(slot).value.of.vector[0] = coordinate;
    at(slot).value.of.vector[2] = counter;
    press(slot);
}

void FakePanels::clickAt(int slot, int mouseX) {
    at(slot).mouseX = mouseX;
    press(slot);
}

void FakePanels::press(int slot) {
    at(slot).event(control[slot], at(slot).userData);
}

HostError PanelTest::whileOpen(const std::function<void()>& user, bool confirm) {
    panels.whileOpen = [&, confirm] {
        panels.log.clear();
        host.updates.clear();
        user();
        return confirm;
    };
    return UI_callback(record.get());
}

}  // namespace tavora::testing
