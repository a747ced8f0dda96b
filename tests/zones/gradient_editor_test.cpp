#include "zones/editor/gradient_editor.h"

#include <algorithm>
#include <limits>

#include "panel/controls/controls.h"
#include "tests/support/fake_panels.h"
#include "zones/editor/gradient_painter.h"
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
    const std::pair<int, float Zone::*> sliders[] = {
        {slot::opacity, &Zone::opacity},
        {slot::bright, &Zone::bright},
        {slot::sat, &Zone::sat},
        {slot::trans, &Zone::trans},
        {slot::accountLightOpac, &Zone::accountLightOpac}};
    whileOpen([&] {
        Zone& zone = *record->zoneList->next;
        float fraction = 0.3f;
        for (const auto& [slot, field] : sliders)
            zone.*field = fraction += 0.1f;
        zone.accountLights = zone.accountLume = 1;
        click(edit, 100);
        EXPECT_EQ(panels.at(slot::accountLights).value.of.integer, 1);
        EXPECT_EQ(panels.at(slot::accountLume).value.of.integer, 1);
        EXPECT_EQ(panels.at(slot::accountLightOpac).mode, HOST_DRAW_NORMAL);
        for (const auto& [slot, field] : sliders) {
            EXPECT_EQ(shownNumber(slot), static_cast<double>(zone.*field * 100.0f)) << slot;
            panels.pixels = 0;
            panels.marks.clear();
            panels.setPercent(slot, slot);
            EXPECT_EQ(zone.*field, static_cast<float>(slot) / 100.0f);
            EXPECT_TRUE(panels.pixels == 389 * 20 && panels.marks.empty()) << "the strip only";
        }
        EXPECT_EQ(host.updates.size(), 1 + std::size(sliders));
        click(edit, 10);
        EXPECT_EQ(panels.at(slot::accountLightOpac).mode, HOST_DRAW_GHOST);
        panels.setInteger(slot::tabs, 1);
        panels.log.clear();
        click(add, 200);
        EXPECT_EQ(zonesOf(*record).size(), 5u) << "the markers are the first tab's";
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
        EXPECT_EQ(panels.opened.back(), "Zone Colour");
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

TEST_F(GradientEditor, DragsMoveInnerZonesByWholeSteps) {
    const struct {
        int slot;
        double (*moved)(double position, int steps);
    } buttons[] = {{slot::shift, [](double x, int steps) { return x + steps / 1000.0; }},
                   {slot::scale, [](double x, int steps) { return x + x * steps / 500.0; }}};
    whileOpen([&] {
        for (const auto& button : buttons) {
            std::vector<float> expected = {0.0f, 0.25f, 0.5f, 0.999f, 0.9995f};
            const auto drag = [&](int coordinate, int counter, int steps) {
                panels.dragTo(button.slot, coordinate, counter);
                for (std::size_t i = 1; i + 1 < expected.size(); ++i)
                    expected[i] = std::clamp(static_cast<float>(button.moved(expected[i], steps)),
                                             0.0f, 1.0f);
                EXPECT_EQ(positions(), expected) << button.slot << " by " << steps;
            };
            panels.dragTo(button.slot, 0, std::numeric_limits<int>::max());
            arrange({{0.0f, 0}, {0.25f, 0}, {0.5f, 0}, {0.999f, 0}, {0.9995f, 0}});
            // A counter that falls starts a drag, where both numbers were equally far on.
            drag(500, 6, 3);
            host.updates.clear();
            panels.pixels = 0;
            drag(501, 7, 0);  // half a step
            EXPECT_TRUE(host.updates.empty() && panels.pixels == 0);
            drag(511, 8, 5);
            EXPECT_EQ(host.updates.size(), 1u);
            drag(-3000, 9, -1755);
        }
        arrange({{0.0f, 0}, {0.5f, 0}, {1.0f, 0}});
        panels.dragTo(slot::shift, -2998, 10);
        EXPECT_EQ(positions()[1], 0.501f) << "each button goes on from its own last step";
    });
}

class GradientPainter : public GradientEditor {
  protected:
    void paint() {
        panels.marks.clear();
        panels.pixels = 0;
        drawGradient(record.get());
        drawGradCon(record.get());
    }
    FakePixel pixel(int column, int row) { return panels.painted.at({column + 139, row + 9}); }
    /// The strip of two zones: this one over the whole length, and the end.
    FakePixel onlyZone(const Zone& zone, int column, int row) {
        replaceZones(*record, {zone, greyZone(1.0f, 0.0f)});
        paint();
        return pixel(column, row);
    }
};

TEST_F(GradientPainter, ShowsEachBandUpToItsLastColumn) {
    whileOpen([&] {
        paint();
        EXPECT_TRUE(panels.pixels == 389 * 20 && panels.painted.size() == 389 * 20) << "once each";
        const FakePixel black{0, 0, 0}, blue{0, 0, 255}, red{255, 0, 0};
        for (const auto& [column, color] :
             {std::pair{1, black}, {97, black}, {98, blue}, {389, red}}) {
            EXPECT_EQ(pixel(column, 0), color) << column;
            EXPECT_EQ(pixel(column, 19), color) << column;
        }
    });
}

TEST_F(GradientPainter, LetsTheBoardShowThroughAndAppliesBothFactorsTwice) {
    whileOpen([&] {
        const Zone half = zoneOf(0, {1, 0, 0}, 0.5f, 1, 1);
        const FakePixel light{255, 127, 127}, dark{127, 0, 0};
        EXPECT_EQ(onlyZone(half, 5, 4), light);
        EXPECT_EQ(pixel(6, 4), dark);
        EXPECT_EQ(pixel(5, 5), dark);
        EXPECT_EQ(pixel(6, 5), light);
        EXPECT_EQ(pixel(1, 19), dark);
        const auto colored = [&](Vec color, float bright, float sat) {
            return onlyZone(zoneOf(0, color, 1, bright, sat), 10, 3);
        };
        EXPECT_EQ(colored({0, 0.6, 0.9}, 1, 0), (FakePixel{127, 127, 127}));
        EXPECT_EQ(colored({0, 0.5, 1}, 1, 0.5f), (FakePixel{95, 127, 159}));
        EXPECT_EQ(colored({0, 1, 0}, 0.5f, 1), (FakePixel{0, 63, 0}));
        EXPECT_EQ(colored({0, 1, 0}, 2, 1), (FakePixel{0, 1020, 0})) << "nothing is clamped";
    });
}

TEST_F(GradientPainter, MarksZonesByKindAndTheSelectedOne) {
    whileOpen([&] {
        addZone(record.get(), 0.6, 1);
        moveZone(record.get(), 0.5);
        panels.log.clear();
        paint();
        EXPECT_EQ(panels.marks,
                  (Names{"| 139 33 255", "| 236 33 255", "| 334 33 255", "^ 332 33 255",
                         "' 373 33 255", "| 431 33 255", "  527 33 255"}));
        EXPECT_EQ(panels.log, Names{"draw 52 1"});
        EXPECT_EQ(record->zoneCursor, record->zoneList);
        redraw(panelID, record.get());
        EXPECT_EQ(panels.borders,
                  (Names{"0 135 185 400 0", "0 135 267 400 0", "0 135 93 400 227"}));
    });
}

}  // namespace
}  // namespace tavora::testing
