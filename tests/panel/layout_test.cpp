// The controls of the settings panel: how they are made, and what a tab shows.

#include <gtest/gtest.h>

#include "tests/support/open_panel.h"

namespace tavora::testing {
namespace {

/// Stands for a long text that would only be copied from the tables (FNV-1a).
std::uint64_t digest(const std::string& text) {
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
    return hash;
}

std::string joined(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts)
        text += part + "\n";
    return text;
}

/// Type, numbers and texts.
std::string shapeOf(const FakeControl& made) {
    const auto& of = made.description.of;
    const auto with = [&](int a, int b) {
        return std::to_string(made.description.type) + " " + std::to_string(a) + " " +
               std::to_string(b) + "\n" + joined(made.texts);
    };
    switch (made.description.type) {
        case HOST_VALUE_AREA:
            return with(of.area.width, of.area.height);
        case HOST_VALUE_RANGE:
            return with(of.range.minimum, of.range.maximum);
        case HOST_VALUE_CHOICE:
            return with(of.choice.width, 0);
        case HOST_VALUE_MULTI_LIST:
            return with(of.multiList.width, of.multiList.visibleRows);
        default:
            return with(0, 0);
    }
}

using PanelLayout = PanelTest;

TEST_F(PanelLayout, EveryControlIsMadeInItsOrderAndShowsItsOwnSetting) {
    makeDistinct(*record);
    std::string made, values;
    panels.whileOpen = [&] {
        for (const FakeControl& one : panels.controls) {
            made += one.controlClass + " \"" + one.label + "\" " + shapeOf(one);
            EXPECT_EQ(one.userData, one.event != nullptr ? record.get() : nullptr) << one.label;
            EXPECT_EQ(one.event == nullptr,
                      one.controlClass == "TextControl" || &one == &panels.at(slot::zoneMode));
        }
        values = joined(panels.shown());
        return true;
    };
    EXPECT_EQ(UI_callback(record.get()), nullptr);
    EXPECT_EQ(panels.controls.size(), 66u);
    made += joined(panels.log);  // where each was put
    EXPECT_EQ(digest(made), 14977900531602805586u) << made;
    EXPECT_EQ(digest(values), 9787773105937620841u) << values;
}

TEST_F(PanelLayout, TabsEraseAllThenMoveDrawAndGhostTheirOwn) {
    std::string seen;
    for (const int on : {0, 1}) {
        record->highlightEnable = 2 * on;
        record->highlightOutlineEnable = record->edgeEnable = record->slopeEnable = on;
        record->inkoverEnable = record->inkoverTranslucent = on;
        record->selectedZone->accountLights = on;
        record->useAllLights = 1 - on;
        panels.log.clear();
        whileOpen([&] {
            for (const int tab : {0, 1, 2, 3, 4, 5, 6, -1}) {
                panels.setInteger(slot::tabs, tab);
                EXPECT_EQ(record->activeTab, tab);
            }
            EXPECT_TRUE(host.updates.empty());
        });
        seen += joined(panels.log);
    }
    EXPECT_EQ(digest(seen), 4122544698480577716u) << seen;
}

TEST_F(PanelLayout, TabsGhostWhatIsOffAndLeaveTheZoneModeAlone) {
    const auto modes = [&](int tab) {
        panels.setInteger(slot::tabs, tab);
        std::string text;
        for (const int slot :
             {slot::accountLightOpac, slot::outlineSize, slot::highlightSize, slot::edgeCoverage,
              slot::slopeCenter, slot::inkObject, slot::inkColor, slot::zoneMode})
            text += std::to_string(panels.at(slot).mode);
        return text;
    };
    whileOpen([&] {
        EXPECT_EQ(modes(0), "20000001");
        EXPECT_EQ(modes(4), "00000221") << "as the last tab left it";
        EXPECT_EQ(modes(1), "02200002");
        EXPECT_EQ(modes(2), "00020002");
        EXPECT_EQ(modes(3), "00002002");
        EXPECT_EQ(modes(4), "00000222");
        record->selectedZone->accountLights = record->highlightEnable = record->edgeEnable = 1;
        record->highlightOutlineEnable = record->slopeEnable = record->inkoverEnable = 1;
        record->inkoverTranslucent = 1;
        EXPECT_EQ(modes(0), "10000001");
        EXPECT_EQ(modes(1), "01100002");
        EXPECT_EQ(modes(2), "00010002");
        EXPECT_EQ(modes(3), "00001002");
        EXPECT_EQ(modes(4), "00000122") << "what shows through takes no colours";
    });
}

}  // namespace
}  // namespace tavora::testing
