#include "zones/editor/gradient_editor.h"

#include <cmath>
#include <gtest/gtest.h>

#include "panel/controls/controls.h"
#include "tests/support/open_panel.h"
#include "zones/zone_list.h"

namespace tavora::testing {
namespace {

enum Mode { add, blend, edit, remove };

class GradientEditor : public PanelTest {
  protected:
    void click(Mode mode, int mouseX) {
        panels.at(slot::zoneMode).value.of.integer = mode;
        panels.marks.clear();
        host.updates.clear();
        panels.clickAt(slot::markerStrip, mouseX);
    }
    std::vector<float> positions() {
        std::vector<float> result;
        for (const Zone& zone : zonesOf(*record))
            result.push_back(zone.position);
        return result;
    }
    void arrange(const std::vector<std::pair<float, int>>& zones) {
        std::vector<Zone> list;
        for (const auto& [position, isBlend] : zones) {
            list.push_back(greyZone(position, 0.5f));
            list.back().blend = isBlend;
        }
        replaceZones(*record, list);
    }
    double shownNumber(int slot) { return panels.at(slot).value.of.number; }
};

TEST_F(GradientEditor, AddsBlendsSelectsAndDeletesUnderTheMouse) {
    whileOpen([&] {
        click(add, 195);
        const Zone added = *record->selectedZone;
        EXPECT_EQ(added.position, 0.5f);
        EXPECT_EQ(added.prev->position, 0.25f);
        EXPECT_EQ(added.next->position, 0.5f);
        EXPECT_EQ(shownNumber(slot::position), 50.0);
        EXPECT_EQ(panels.at(slot::shift).value.of.vector[0], 50);
        EXPECT_EQ(panels.at(slot::scale).value.of.vector[0], 0) << "not shown anew";
        EXPECT_EQ(host.updates.size(), 1u);

        click(blend, 234);
        const Zone* blendZone = record->selectedZone;
        EXPECT_EQ(blendZone->blend, 1);
        click(blend, 253);
        EXPECT_EQ(record->selectedZone, blendZone) << "refused";
        EXPECT_EQ(zonesOf(*record).size(), 7u);
        EXPECT_EQ(host.updates.size(), 1u) << "and said all the same";
        EXPECT_FALSE(panels.marks.empty());

        click(edit, 100);
        EXPECT_EQ(record->selectedZone->position, 0.25f);
        click(edit, 394);
        EXPECT_EQ(record->selectedZone->position, 0.75f);
        click(add, 394);
        EXPECT_EQ(zonesOf(*record).size(), 7u) << "above the last zone";
        click(remove, 20);
        EXPECT_EQ(zonesOf(*record).size(), 7u);
        click(remove, 294);
        EXPECT_EQ(zonesOf(*record).size(), 6u);
        EXPECT_EQ(record->selectedZone, record->zoneList);
    });
}

TEST_F(GradientEditor, SlidersShowAndEditTheSelectedZone) {
    whileOpen([&] {
        const std::pair<int, float Zone::*> sliders[] = {
            {slot::opacity, &Zone::opacity},
            {slot::bright, &Zone::bright},
            {slot::sat, &Zone::sat},
            {slot::trans, &Zone::trans},
            {slot::accountLightOpac, &Zone::accountLightOpac}};
        Zone& zone = *record->zoneList->next;
        float fraction = 0.3f;
        for (const auto& [slot, field] : sliders)
            zone.*field = fraction += 0.1f;
        zone.accountLights = zone.accountLume = 1;
        click(edit, 100);
        EXPECT_EQ(panels.at(slot::accountLights).value.of.integer, 1);
        EXPECT_EQ(panels.at(slot::accountLume).value.of.integer, 1);
        EXPECT_EQ(panels.at(slot::accountLightOpac).mode, HOST_DRAW_NORMAL);
        double percent = 40;
        for (const auto& [slot, field] : sliders) {
            EXPECT_EQ(shownNumber(slot), static_cast<double>(zone.*field * 100.0f)) << slot;
            panels.pixels = 0;
            panels.marks.clear();
            panels.setPercent(slot, ++percent);
            EXPECT_EQ(zone.*field, static_cast<float>(percent) / 100.0f);
            EXPECT_TRUE(panels.pixels == 389 * 20 && panels.marks.empty()) << "the strip only";
        }
        EXPECT_EQ(host.updates.size(), 1 + std::size(sliders));
        click(edit, 10);
        EXPECT_EQ(panels.at(slot::accountLightOpac).mode, HOST_DRAW_GHOST);
    });
}

TEST_F(GradientEditor, MarkerClicksCountOnTheFirstTabOnly) {
    whileOpen([&] {
        panels.setInteger(slot::tabs, 1);
        panels.log.clear();
        click(add, 200);
        EXPECT_EQ(zonesOf(*record).size(), 5u);
        EXPECT_TRUE(host.updates.empty() && panels.log.empty() && panels.marks.empty());
    });
}

TEST_F(GradientEditor, PicksTheColourOfTheOrdinaryZoneUnderTheMouse) {
    whileOpen([&] {
        addZone(record.get(), 0.6, 1);
        Zone* selected = record->selectedZone;
        panels.onPick = [](HostColorPick& request) {
            EXPECT_EQ(request.green, 1.0f) << "opens on the zone's own";
            request.red = 0.1f;
            request.green = 0.2f;
            request.blue = 0.3f;
            request.result = 1;
            return 0;
        };
        panels.setInteger(slot::tabs, 3);
        panels.clickAt(slot::gradientStrip, 260);  // in the blend zone's band
        EXPECT_EQ(panels.colorTitles, std::vector<std::string>{"Zone Colour"});
        const Zone& green = *selected->prev;
        EXPECT_EQ(green.color[0], 0.1f);
        EXPECT_EQ(green.color[2], 0.3f);
        EXPECT_EQ(record->selectedZone, selected);
        EXPECT_EQ(record->zoneCursor, record->zoneList);
        panels.onPick = [](HostColorPick& request) {
            request.red = 0.9f;
            return 0;  // cancelled
        };
        host.updates.clear();
        panels.clickAt(slot::gradientStrip, 200);
        EXPECT_EQ(green.color[0], 0.1f);
        EXPECT_EQ(host.updates.size(), 1u);
    });
}

TEST_F(GradientEditor, PositionStaysBetweenTheNeighbours) {
    whileOpen([&] {
        moveZone(record.get(), 0.5);
        Zone& zone = *record->selectedZone;
        for (const auto& [percent, position] :
             {std::pair{90.0, 0.75f}, {10.0, 0.25f}, {33.3, static_cast<float>(33.3) / 100.0f}}) {
            panels.setPercent(slot::position, percent);
            EXPECT_EQ(zone.position, position);
            EXPECT_EQ(shownNumber(slot::position), percent);
        }
        moveZone(record.get(), 0.0);
        panels.setPercent(slot::position, 20);
        EXPECT_EQ(record->zoneList->position, 0.0f);
        EXPECT_EQ(host.updates.size(), 4u);
    });
}

TEST_F(GradientEditor, SpreadSpacesOrdinaryZonesAndCentresBlends) {
    whileOpen([&] {
        const float third = 1.0f / 3.0f, twoThirds = 2.0f / 3.0f;
        const struct {
            std::vector<std::pair<float, int>> before;
            std::vector<float> after;
        } cases[] = {{{{0.0f, 0}, {0.1f, 0}, {0.2f, 1}, {0.3f, 0}, {1.0f, 0}},
                      {0.0f, third, twoThirds + third * -0.5f, twoThirds, 1.0f}},
                     {{{0.0f, 0}, {0.3f, 0}, {0.6f, 1}, {1.0f, 0}}, {0.0f, 0.5f, 0.75f, 1.0f}},
                     {{{0.0f, 0}, {0.9f, 1}, {1.0f, 0}}, {0.0f, 0.5f, 1.0f}}};
        for (const auto& c : cases) {
            arrange(c.before);
            panels.press(slot::spread);
            EXPECT_EQ(positions(), c.after);
        }
        EXPECT_EQ(host.updates.size(), 3u);
    });
}

/// Drag counters that no test has used: the buttons remember the last one.
int nextCounter() {
    static int counter = 0;
    return counter += 1000;
}

TEST_F(GradientEditor, DragsMoveInnerZonesByWholeSteps) {
    whileOpen([&] {
        const int start = nextCounter();
        panels.dragTo(slot::shift, 40, start);       // whatever went before
        panels.dragTo(slot::shift, 500, start - 1);  // a counter that fell: a new drag
        const std::vector<float> before = {0.0f, 0.25f, 0.5f, 0.999f, 1.0f};
        arrange({{0.0f, 0}, {0.25f, 0}, {0.5f, 0}, {0.999f, 0}, {1.0f, 0}});
        host.updates.clear();
        panels.pixels = 0;
        // The drag began where its coordinate and counter were equally far on.
        const int origin = 500 - (start - 1);
        const int applied = 500 - origin;
        panels.dragTo(slot::shift, origin + applied + 1, start);
        EXPECT_EQ(positions(), before) << "half a step";
        EXPECT_TRUE(host.updates.empty() && panels.pixels == 0);
        panels.dragTo(slot::shift, origin + applied + 11, start + 1);
        EXPECT_EQ(positions(),
                  (std::vector<float>{0.0f, static_cast<float>(0.25 + 5 / 1000.0),
                                      static_cast<float>(0.5 + 5 / 1000.0), 1.0f, 1.0f}))
            << "five steps, and no further than the end";
        EXPECT_EQ(host.updates.size(), 1u);
    });
}

TEST_F(GradientEditor, ScaleMultipliesAndKeepsItsOwnMemory) {
    whileOpen([&] {
        const int start = nextCounter();
        panels.dragTo(slot::scale, 0, start);
        panels.dragTo(slot::scale, 0, 1);  // a new drag from -1
        arrange({{0.0f, 0}, {0.5f, 0}, {1.0f, 0}});
        const int applied = 1;
        panels.dragTo(slot::shift, 0, start + 1);
        arrange({{0.0f, 0}, {0.5f, 0}, {1.0f, 0}});
        panels.dragTo(slot::scale, -1 + applied + 20, 2);
        EXPECT_EQ(positions()[1], static_cast<float>(0.5 + 0.5 * 10 / 500.0));
        panels.dragTo(slot::scale, -1 + applied + 20 - 2000, 3);
        EXPECT_EQ(positions()[1], 0.0f);
    });
}

}  // namespace
}  // namespace tavora::testing
