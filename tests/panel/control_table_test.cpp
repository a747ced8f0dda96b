#include <gtest/gtest.h>

#include "panel/controls.h"
#include "tests/support/open_panel.h"
#include "zones/zone_list.h"

namespace tavora::testing {
namespace {

std::string describe(const HostControlDescription& description,
                     const std::vector<std::string>& texts) {
    std::string text = std::to_string(description.type);
    const auto add = [&text](int number) { text += "," + std::to_string(number); };
    if (description.type == HOST_VALUE_AREA) {
        add(description.of.area.width);
        add(description.of.area.height);
    }
    if (description.type == HOST_VALUE_RANGE) {
        add(description.of.range.minimum);
        add(description.of.range.maximum);
    }
    if (description.type == HOST_VALUE_MULTI_LIST) {
        add(description.of.multiList.width);
        add(description.of.multiList.visibleRows);
    }
    if (description.type == HOST_VALUE_CHOICE) add(description.of.choice.width);
    for (const std::string& item : texts)
        text += "[" + item + "]";
    return text;
}

std::string shown(const HostValue& value) {
    switch (value.type) {
        case HOST_VALUE_INTEGER:
            return std::to_string(value.of.integer);
        case HOST_VALUE_FLOAT:
            return std::to_string(value.of.number).substr(0, 6);
        case HOST_VALUE_INTEGER_VECTOR:
            return std::to_string(value.of.vector[0]) + "/" + std::to_string(value.of.vector[1]) +
                   "/" + std::to_string(value.of.vector[2]);
        default:
            return "-";
    }
}

/// Class and label, description, place, and what it shows at first.
std::string describe(const FakeControl& made, int x, int y) {
    return made.controlClass + " \"" + made.label + "\" " + describe(made.description, made.texts) +
           " " + std::to_string(x) + "," + std::to_string(y) + " " + shown(made.value);
}

struct Expected {
    int slot;
    const char* text;
};

// By order of creation, for a new record whose black zone at 0 is selected.
const Expected expected[] = {
    {1, "ButtonControl \"About\" 19,45,0 5,5 -"},
    {2, "ButtonControl \"Spread\" 19,57,0 70,5 -"},
    {3, "PercentControl \"Position\" 15,0,100 161,121 37.500"},
    {55, "DragButtonControl \"Shift  \" 19,-1,0 70,25 37/0/0"},
    {56, "DragButtonControl \"Scale\" 19,-1,0 70,45 37/0/0"},
    {5, "PercentControl \"Opacity\" 15,0,100 162,150 100.00"},
    {8, "PercentControl \"Brightness\" 15,0,100 172,208 100.00"},
    {9, "PercentControl \"Saturation\" 15,0,100 173,234 100.00"},
    {74, "PercentControl \"Transparency\" 15,0,100 340,208 0.0000"},
    {10, "MiniRGBControl \"\" 5 290,121 254/127/255"},
    {4, "AreaControl \"\" 19,30,17 295,122 -"},
    {12, "PopupControl \"\" 9,50[Off][On][Light] 463,150 0"},
    {14, "PercentControl \"Size\" 15,0,100 178,121 12.000"},
    {11, "PercentControl \"Opacity\" 15,0,100 162,150 100.00"},
    {15, "TextControl \"\" 12[Zone Characteristics:] 138,187 -"},
    {16, "TextControl \"\" 12[Cel-Look Specular highlights:] 138,100 -"},
    {17, "TextControl \"\" 12[Highlight Outline:] 138,187 -"},
    {18, "PercentControl \"Size\" 15,0,100 178,208 2.0000"},
    {19, "PercentControl \"Opacity\" 15,0,100 162,237 100.00"},
    {20, "BoolControl \"\" 8 500,236 0"},
    {21, "TextControl \"\" 12[Enable] 457,236 -"},
    {22, "MiniRGBControl \"\" 5 290,210 0/0/0"},
    {6, "AreaControl \"\" 19,30,17 295,212 -"},
    {23, "PercentControl \"Force Color\" 15,0,100 374,281 100.00"},
    {24, "TabChoiceControl \"\" 9,0[Zones][CelSpec ][Edges][Slope][InkOver][Advanced] 130,69 0"},
    {25, "BoolControl \"Account for Light Colour in Zone\" 8 310,121 0"},
    {27, "ButtonControl \"Clear to Default\" 19,84,0 237,325 -"},
    {28, "ButtonControl \"Set as Default\" 19,80,0 327,325 -"},
    {30, "MiniRGBControl \"\" 5 200,210 0/0/0"},
    {7, "AreaControl \"\" 19,30,17 200,210 -"},
    {31, "BoolControl \" \" 8 500,236 0"},
    {32, "PercentControl \"Coverage\" 15,0,100 152,121 20.000"},
    {33, "PercentControl \"Sharpness\" 15,0,100 148,150 50.000"},
    {35, "BoolControl \"Account for Luminosity in Zone\" 8 345,282 0"},
    {36, "ButtonControl \"  All\" 19,36,0 21,310 -"},
    {37, "ButtonControl \"None\" 19,36,0 59,310 -"},
    {38, "PercentControl \"Top Opacity\" 15,0,100 146,121 50.000"},
    {39, "PercentControl \"Bottom Opac.\" 15,0,100 139,150 50.000"},
    {40, "MiniRGBControl \" \" 5 295,121 255/255/255"},
    {53, "AreaControl \"\" 19,30,17 300,121 -"},
    {41, "MiniRGBControl \" \" 5 295,150 0/0/0"},
    {54, "AreaControl \"\" 19,30,17 300,151 -"},
    {42, "PercentControl \"Center\" 15,0,100 173,205 50.000"},
    {43, "BoolControl \" \" 8 500,236 0"},
    {44, "ChoiceControl \"Style\" 9,0[Mix][Step] 315,204 0"},
    {45, "TextControl \"\" 12[Enable] 457,236 -"},
    {46, "TextControl \"\" 12[Enable] 457,236 -"},
    {48, "MultiListBoxControl \"Lights\" 22,100,12 10,88 -"},
    {50, "ChoiceControl \"\" 9,0[Add][Blend][  Edit][Delete] 355,47 2"},
    {51, "AreaControl \"\" 19,390,20 140,5 -"},
    {52, "AreaControl \"\" 19,395,13 138,30 -"},
    {57, "MiniRGBControl \"\" 5 295,121 0/0/0"},
    {58, "AreaControl \"\" 19,30,17 300,121 -"},
    {65, "TextControl \"\" 12[Ink Colour] 240,121 -"},
    {70, "NumControl \"Max Trace Depth\" 2 200,216 7"},
    {59, "MiniRGBControl \"\" 5 295,150 0/0/0"},
    {60, "AreaControl \"\" 19,30,17 300,151 -"},
    {66, "TextControl \"\" 12[InkOver Colour] 217,151 -"},
    {61, "BoolControl \"\" 8 500,236 0"},
    {62, "TextControl \"\" 12[Enable] 457,236 -"},
    {63, "BoolControl \"\" 8 500,211 1"},
    {64, "TextControl \"\" 12[Object Only] 435,211 -"},
    {68, "PopupControl \"Light Power\" 9,75[Linear][Squared][Cubed] 173,125 0"},
    {69, "PopupControl \"Colour Texture Use\" 9,75[None][Decal][Shaded] 184,281 0"},
    {71, "BoolControl \"Use All Lights\" 8 20,336 1"},
    {72, "PercentControl \"Light Colour Opacity\" 15,0,100 310,151 100.00"},
};

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
    ASSERT_EQ(panels.controls.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const FakeControl& made = panels.controls[i];
        EXPECT_EQ(&made, &panels.at(expected[i].slot)) << "creation " << i;
        const auto [x, y] = firstPlace(panels.log, expected[i].slot);
        EXPECT_EQ(describe(made, x, y), expected[i].text) << "slot " << expected[i].slot;
    }
    for (int empty : {0, 13, 26, 29, 34, 47, 49, 67, 73})
        EXPECT_EQ(control[empty], nullptr) << empty;
}

TEST_F(ControlTable, HandsTheRecordToEveryControlWithAnEvent) {
    whileOpen([&] {
        const std::set<int> silent = {15, 16, 17, 21, 45, 46, 50, 62, 64, 65, 66};
        for (const Expected& one : expected) {
            const bool hasEvent = silent.count(one.slot) == 0;
            EXPECT_EQ(panels.at(one.slot).event != nullptr, hasEvent) << one.slot;
            EXPECT_EQ(panels.at(one.slot).userData, hasEvent ? record.get() : nullptr);
        }
    });
}

}  // namespace
}  // namespace tavora::testing
