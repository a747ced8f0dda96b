#include <gtest/gtest.h>
#include <sstream>

#include "panel/controls/controls.h"
#include "tests/support/open_panel.h"
#include "zones/zone_list.h"

namespace tavora::testing {
namespace {

/// Slot, class, label, kind with its numbers and texts, place and what it shows
/// at first, "!" without an event; by order of creation, for a new record whose
/// black zone at 0.375 is selected.
constexpr const char* expected = R"(1 Button "About" 19,45,0 5,5 -|2 Button "Spread" 19,57,0 70,5 -|
3 Percent "Position" 15,0,100 161,121 37.500|55 DragButton "Shift  " 19,-1,0 70,25 37/0/0|
56 DragButton "Scale" 19,-1,0 70,45 37/0/0|5 Percent "Opacity" 15,0,100 162,150 100.00|
8 Percent "Brightness" 15,0,100 172,208 100.00|9 Percent "Saturation" 15,0,100 173,234 100.00|
74 Percent "Transparency" 15,0,100 340,208 0.0000|10 MiniRGB "" 5 290,121 254/127/255|
4 Area "" 19,30,17 295,122 -|12 Popup "" 9,50[Off][On][Light] 463,150 0|
14 Percent "Size" 15,0,100 178,121 12.000|11 Percent "Opacity" 15,0,100 162,150 100.00|
15 Text "" 12[Zone Characteristics:] 138,187 -!|
16 Text "" 12[Cel-Look Specular highlights:] 138,100 -!|
17 Text "" 12[Highlight Outline:] 138,187 -!|18 Percent "Size" 15,0,100 178,208 2.0000|
19 Percent "Opacity" 15,0,100 162,237 100.00|20 Bool "" 8 500,236 0|
21 Text "" 12[Enable] 457,236 -!|22 MiniRGB "" 5 290,210 0/0/0|6 Area "" 19,30,17 295,212 -|
23 Percent "Force Color" 15,0,100 374,281 100.00|
24 TabChoice "" 9,0[Zones][CelSpec ][Edges][Slope][InkOver][Advanced] 130,69 0|
25 Bool "Account for Light Colour in Zone" 8 310,121 0|
27 Button "Clear to Default" 19,84,0 237,325 -|28 Button "Set as Default" 19,80,0 327,325 -|
30 MiniRGB "" 5 200,210 0/0/0|7 Area "" 19,30,17 200,210 -|31 Bool " " 8 500,236 0|
32 Percent "Coverage" 15,0,100 152,121 20.000|33 Percent "Sharpness" 15,0,100 148,150 50.000|
35 Bool "Account for Luminosity in Zone" 8 345,282 0|36 Button "  All" 19,36,0 21,310 -|
37 Button "None" 19,36,0 59,310 -|38 Percent "Top Opacity" 15,0,100 146,121 50.000|
39 Percent "Bottom Opac." 15,0,100 139,150 50.000|40 MiniRGB " " 5 295,121 255/255/255|
53 Area "" 19,30,17 300,121 -|41 MiniRGB " " 5 295,150 0/0/0|54 Area "" 19,30,17 300,151 -|
42 Percent "Center" 15,0,100 173,205 50.000|43 Bool " " 8 500,236 0|
44 Choice "Style" 9,0[Mix][Step] 315,204 0|45 Text "" 12[Enable] 457,236 -!|
46 Text "" 12[Enable] 457,236 -!|48 MultiListBox "Lights" 22,100,12 10,88 -|
50 Choice "" 9,0[Add][Blend][  Edit][Delete] 355,47 2!|51 Area "" 19,390,20 140,5 -|
52 Area "" 19,395,13 138,30 -|57 MiniRGB "" 5 295,121 0/0/0|58 Area "" 19,30,17 300,121 -|
65 Text "" 12[Ink Colour] 240,121 -!|70 Num "Max Trace Depth" 2 200,216 7|
59 MiniRGB "" 5 295,150 0/0/0|60 Area "" 19,30,17 300,151 -|
66 Text "" 12[InkOver Colour] 217,151 -!|61 Bool "" 8 500,236 0|62 Text "" 12[Enable] 457,236 -!|
63 Bool "" 8 500,211 1|64 Text "" 12[Object Only] 435,211 -!|
68 Popup "Light Power" 9,75[Linear][Squared][Cubed] 173,125 0|
69 Popup "Colour Texture Use" 9,75[None][Decal][Shaded] 184,281 0|
71 Bool "Use All Lights" 8 20,336 1|72 Percent "Light Colour Opacity" 15,0,100 310,151 100.00|)";

std::string numbersOf(const HostControlDescription& description) {
    const auto pair = [](int a, int b) { return std::to_string(a) + "," + std::to_string(b); };
    switch (description.type) {
        case HOST_VALUE_AREA:
            return "," + pair(description.of.area.width, description.of.area.height);
        case HOST_VALUE_RANGE:
            return "," + pair(description.of.range.minimum, description.of.range.maximum);
        case HOST_VALUE_MULTI_LIST:
            return "," + pair(description.of.multiList.width, description.of.multiList.visibleRows);
        case HOST_VALUE_CHOICE:
            return "," + std::to_string(description.of.choice.width);
        default:
            return "";
    }
}

std::string shown(const HostValue& value) {
    const auto& vector = value.of.vector;
    switch (value.type) {
        case HOST_VALUE_INTEGER:
            return std::to_string(value.of.integer);
        case HOST_VALUE_FLOAT:
            return std::to_string(value.of.number).substr(0, 6);
        case HOST_VALUE_INTEGER_VECTOR:
            return std::to_string(vector[0]) + "/" + std::to_string(vector[1]) + "/" +
                   std::to_string(vector[2]);
        default:
            return "-";
    }
}

/// Where a control was put first, from the log of an opening.
std::pair<int, int> firstPlace(const std::vector<std::string>& log, int slot) {
    const std::string start = "move " + std::to_string(slot) + " ";
    for (const std::string& entry : log) {
        if (entry.rfind(start, 0) != 0) continue;
        const std::size_t space = entry.find(' ', start.size());
        return {std::stoi(entry.substr(start.size())), std::stoi(entry.substr(space))};
    }
    return {-1, -1};
}

std::string describe(int slot, const FakeControl& made, const std::vector<std::string>& log) {
    const auto [x, y] = firstPlace(log, slot);
    std::string text = std::to_string(slot) + " " + made.controlClass + " \"" + made.label + "\" " +
                       std::to_string(made.description.type) + numbersOf(made.description);
    text.erase(text.find("Control"), 7);
    for (const std::string& item : made.texts)
        text += "[" + item + "]";
    return text + " " + std::to_string(x) + "," + std::to_string(y) + " " + shown(made.value) +
           (made.event == nullptr ? "!" : "");
}

using ControlTable = PanelTest;

TEST_F(ControlTable, HoldsEveryControlInItsOrderAndPlace) {
    moveZone(record.get(), 0.3);
    record->selectedZone->position = 0.375f;
    record->selectedZone->accountLume = 1;  // never shown at first
    record->highlightColor[0] = 0.999f;
    record->highlightColor[1] = 0.5f;
    record->maxTraceDepth = 7;
    panels.whileOpen = [] { return true; };
    ASSERT_EQ(UI_callback(record.get()), nullptr);
    std::istringstream table(expected);
    std::size_t count = 0;
    for (std::string one; std::getline(table >> std::ws, one, '|'); ++count) {
        const int slot = std::stoi(one);
        ASSERT_LT(count, panels.controls.size());
        const FakeControl& made = panels.controls[count];
        EXPECT_EQ(&made, &panels.at(slot)) << "creation " << count;
        EXPECT_EQ(describe(slot, made, panels.log), one);
        EXPECT_EQ(made.userData, made.event != nullptr ? record.get() : nullptr) << slot;
    }
    EXPECT_EQ(count, 66u);
    EXPECT_EQ(count, panels.controls.size());
    for (int empty : {0, 13, 26, 29, 34, 47, 49, 67, 73})
        EXPECT_EQ(control[empty], nullptr) << empty;
}

}  // namespace
}  // namespace tavora::testing
