#include "tests/support/fake_panels.h"

#include <gtest/gtest.h>

#include "panel/controls/controls.h"
#include "plugin/record/services.h"

namespace tavora::testing {
namespace {

FakePanels* panels = nullptr;

/// What a panel handle stands for; the About panel is told by its title.
struct Panel {
    bool about;
};

FakeControl& controlOf(HostControlId id) {
    return *reinterpret_cast<FakeControl*>(id);
}

int slotOf(HostControlId id) {
    for (int slot = 0; slot < controlSlots; ++slot) {
        if (control[slot] == id) return slot;
    }
    return -1;
}

std::vector<std::string> textsOf(const HostControlDescription& description) {
    const char** texts = nullptr;
    if (description.type == HOST_VALUE_TEXT) texts = description.of.text.lines;
    if (description.type == HOST_VALUE_CHOICE) texts = description.of.choice.items;
    std::vector<std::string> result;
    for (; texts != nullptr && *texts != nullptr; ++texts)
        result.emplace_back(*texts);
    return result;
}

std::string textOf(const HostValue& value) {
    const auto& vector = value.of.vector;
    switch (value.type) {
        case HOST_VALUE_INTEGER:
            return std::to_string(value.of.integer);
        case HOST_VALUE_FLOAT:
            return std::to_string(value.of.number);
        case HOST_VALUE_INTEGER_VECTOR:
            return std::to_string(vector[0]) + "/" + std::to_string(vector[1]) + "/" +
                   std::to_string(vector[2]);
        default:
            return "";
    }
}

std::deque<FakeControl> aboutControls;

HostControlId addControl(HostPanelId panel, const char* controlClass,
                         const HostControlDescription* description, const char* label) {
    const bool about = reinterpret_cast<Panel*>(panel)->about;
    std::deque<FakeControl>& list = about ? aboutControls : panels->controls;
    FakeControl made;
    made.controlClass = controlClass;
    made.label = label;
    made.description = *description;
    made.texts = textsOf(*description);
    list.push_back(made);
    return reinterpret_cast<HostControlId>(&list.back());
}

void setControl(HostControlId id, HostControlAttribute attribute, const HostValue* value) {
    FakeControl& target = controlOf(id);
    switch (attribute) {
        case HOST_CONTROL_X:
            target.x = value->of.integer;
            break;
        case HOST_CONTROL_Y:
            target.y = value->of.integer;
            panels->log.push_back("move " + std::to_string(slotOf(id)) + " " +
                                  std::to_string(target.x) + " " + std::to_string(target.y));
            break;
        case HOST_CONTROL_VALUE:
            target.value = *value;
            break;
        case HOST_CONTROL_USER_DATA:
            target.userData = value->of.pointer;
            break;
        case HOST_CONTROL_EVENT:
            target.event = value->of.event;
            break;
        default:
            ADD_FAILURE() << "the module set attribute " << attribute;
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

void drawControlNow(HostControlId id, int mode) {
    controlOf(id).mode = mode;
    panels->log.push_back("draw " + std::to_string(slotOf(id)) + " " + std::to_string(mode));
}

const HostDrawFunctions drawing = {
    [](HostPanelId, int red, int green, int blue, int x, int y) {
        ++panels->pixels;
        panels->strip.at(static_cast<std::size_t>(x)).at(static_cast<std::size_t>(y)) = {red, green,
                                                                                         blue};
    },
    [](HostPanelId, int indent, int x, int y, int width, int height) {
        std::string text;
        for (int number : {indent, x, y, width, height})
            text += std::to_string(number) + " ";
        panels->borders.push_back(text);
    },
    [](HostPanelId, const char* text, int color, int x, int y) {
        panels->marks.push_back(std::string(text) + " " + std::to_string(x) + " " +
                                std::to_string(y) + " " + std::to_string(color));
    },
    [](int* width, int* height) {
        *width = 1919;
        *height = 301;
    }};

int openPanel(HostPanelId panel, int mode) {
    if (reinterpret_cast<Panel*>(panel)->about) {
        EXPECT_EQ(mode, HOST_PANEL_BLOCKING);
        for (const FakeControl& made : aboutControls) {
            panels->aboutTexts.push_back(std::to_string(made.x) + "," + std::to_string(made.y) +
                                         ": " + made.texts[0] + " / " + made.texts[1]);
        }
        return 0;
    }
    panels->openMode = mode;
    return panels->whileOpen && panels->whileOpen() ? 1 : 0;
}

const HostPanelServices services = {
    [](const char* title, void* data) -> HostPanelId {
        EXPECT_EQ(data, nullptr);
        panels->titles.emplace_back(title);
        if (!panels->panelsCanBeMade) return nullptr;
        ++panels->livePanels;
        aboutControls.clear();
        const bool about = panels->titles.back() == "About";
        if (!about) panels->controls.clear();
        return reinterpret_cast<HostPanelId>(new Panel{about});
    },
    [](HostPanelId panel) {
        --panels->livePanels;
        delete reinterpret_cast<Panel*>(panel);
    },
    openPanel,
    addControl,
    setControl,
    getControl,
    drawControlNow,
    [](HostPanelId, HostPanelAttribute attribute, int value) {
        panels->attributes.emplace_back(attribute, value);
    },
    [](HostPanelId, HostPanelDraw* draw) { EXPECT_NE(draw, nullptr); },
    [](HostPanelId, void* data) { EXPECT_NE(data, nullptr); },
    &drawing};

int pickColorNow(int version, HostColorPick* request) {
    EXPECT_EQ(version, 4);
    EXPECT_EQ(request->result, 0);
    EXPECT_TRUE(request->data == nullptr && request->liveUpdate == nullptr);
    panels->colorTitles.emplace_back(request->title);
    return panels->onPick ? panels->onPick(*request) : 1;
}

const HostRasterServices raster = {};

}  // namespace

FakePanels::FakePanels(FakeHost& host) : strip(600, std::vector<FakePixel>(60, {-1, -1, -1})) {
    panels = this;
    host.moreServices["LWPanelServices"] = const_cast<HostPanelServices*>(&services);
    host.moreServices["RasterServices"] = const_cast<HostRasterServices*>(&raster);
    host.moreServices["Color Picker"] = reinterpret_cast<void*>(&pickColorNow);
    global = FakeHost::lookup;
}

FakePanels::~FakePanels() {
    EXPECT_EQ(livePanels, 0);
    global = nullptr;
    panels = nullptr;
}

FakeControl& FakePanels::at(int slot) {
    EXPECT_NE(control[slot], nullptr) << "slot " << slot;
    return controlOf(control[slot]);
}

std::vector<std::string> FakePanels::shown() {
    std::vector<std::string> values(controlSlots);
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
    FakeControl& pressed = at(slot);
    ASSERT_NE(pressed.event, nullptr);
    pressed.event(control[slot], pressed.userData);
}

}  // namespace tavora::testing
