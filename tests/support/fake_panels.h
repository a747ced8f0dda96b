#pragma once

#include <array>

#include "host/services/color_picker.h"
#include "host/services/panels.h"
#include "panel/controls/slots.h"
#include "panel/settings_panel.h"
#include "tests/support/fake_host.h"

namespace tavora::testing {

/// A control as the module made it.
struct FakeControl {
    std::string made;      ///< class, label, and what its description says
    HostValue value = {};  ///< type 0: never given one
    void* userData = nullptr;
    HostControlEvent* event = nullptr;
    int mode = -1;  ///< last draw mode
    int mouseX = 0;
};

using FakePixel = std::array<int, 3>;

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
    bool controlsCanBeMade = true;

    Names opened;      ///< panels and colour pickers: what they were called, how opened
    Names attributes;  ///< of panels: "WHAT VALUE"
    Names log;         ///< "draw SLOT MODE", "x SLOT X", "y SLOT Y"; -1 in the About panel
    Names marks;       ///< "GLYPH X Y COLOUR"
    Names borders;
    std::deque<FakeControl> controls;                  ///< in the order they were made
    std::map<std::pair<int, int>, FakePixel> painted;  ///< the last pixel at x, y
    HostPanelDraw* draw = nullptr;
    void* drawData = nullptr;
    int livePanels = 0;
    int pixels = 0;

    FakeControl& at(int slot);
    /// What every control shows, by slot: empty where nothing ever was.
    Names shown();
    /// The user's gestures: set the value, then the control's event.
    void setInteger(int slot, int value);
    void setPercent(int slot, double value);
    void dragTo(int slot, int coordinate, int counter);
    void clickAt(int slot, int mouseX);
    void press(int slot);
};

/// A record with its settings panel, for what a user does while it is open.
class PanelTest : public ::testing::Test {
  protected:
    FakeHost host;
    FakePanels panels{host};
    Record record = newRecord();

    /// Opens the panel, forgets what opening said, lets the user act, confirms.
    HostError whileOpen(const std::function<void()>& user, bool confirm = true);
};

}  // namespace tavora::testing
