#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "host/services/color_picker.h"
#include "host/services/panels.h"
#include "panel/controls/slots.h"
#include "tests/support/fake_host.h"

namespace tavora::testing {

/// A control as the module made it.
struct FakeControl {
    std::string controlClass;
    std::string label;
    HostControlDescription description = {};
    std::vector<std::string> texts;  ///< of its description
    int x = -1;
    int y = -1;
    HostValue value = {};  ///< type 0: never given one
    void* userData = nullptr;
    HostControlEvent* event = nullptr;
    int mode = -1;  ///< last draw mode
    int mouseX = 0;
};

struct FakePixel {
    int red, green, blue;
    bool operator==(const FakePixel&) const = default;
};

/// Panel services that record, offered through a FakeHost as long as both live.
class FakePanels {
  public:
    explicit FakePanels(FakeHost& host);
    ~FakePanels();
    FakePanels(const FakePanels&) = delete;
    FakePanels& operator=(const FakePanels&) = delete;

    std::function<bool()> whileOpen;  ///< the user; true for OK
    std::function<int(HostColorPick&)> onPick;
    bool panelsCanBeMade = true;

    std::vector<std::string> titles;              ///< of every panel made
    std::vector<std::string> colorTitles;         ///< of every picker opened
    std::vector<std::pair<int, int>> attributes;  ///< of the last panel: what, value
    std::deque<FakeControl> controls;             ///< of the settings panel, as made
    std::vector<std::string> aboutTexts;          ///< "x,y: first line / second line"
    std::vector<std::string> log;                 ///< "draw SLOT MODE", "move SLOT X Y"
    std::vector<std::vector<FakePixel>> strip;    ///< [x][y] of what was painted
    std::vector<std::string> marks;               ///< "GLYPH X Y COLOUR"
    std::vector<std::string> borders;
    int livePanels = 0;
    int openMode = 0;
    int pixels = 0;

    FakeControl& at(int slot);
    /// What every control shows, by slot: empty where nothing ever was.
    std::vector<std::string> shown();
    /// The user's gestures: set the value, then the control's event.
    void setInteger(int slot, int value);
    void setPercent(int slot, double value);
    void dragTo(int slot, int coordinate, int counter);
    void clickAt(int slot, int mouseX);
    void press(int slot);
};

}  // namespace tavora::testing
