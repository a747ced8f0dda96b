#include "zones/editor/gradient_editor.h"

#include <algorithm>

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
    double shownNumber(int slot) { return panels.at(slot).value.of.number; }
    FakePixel pixel(int column, int row) { return panels.painted.at({column + 139, row + 9}); }
    /// A pixel where this zone stands over the whole length.
    FakePixel onlyZone(const Zone& zone, int column, int row) {
        replaceZones(*record, {zone, greyZone(1.0f, 0.0f)});
        drawGradient(record.get());
        return pixel(column, row);
    }
};

TEST_F(GradientEditor, AddsBlendsSelectsAndDeletesUnderTheMouse) {
    whileOpen([&] {
        click(add, 195);
        const Zone added = *record->selectedZone;
        EXPECT_EQ(added.position, 0.5f);
        EXPECT_TRUE(added.prev->position == 0.25f && added.next->position == 0.5f);
        EXPECT_EQ(shownNumber(slot::position), 50.0);
        EXPECT_EQ(panels.at(slot::shift).value.of.vector[0], 50);
        EXPECT_EQ(panels.at(slot::scale).value.of.vector[0], 0) << "not shown anew";
        EXPECT_EQ(host.updates.size(), 1u);

        click(blend, 234);
        const Zone* blendZone = record->selectedZone;
        EXPECT_EQ(blendZone->blend, 1);
        click(blend, 253);
        EXPECT_EQ(record->selectedZone, blendZone) << "refused";
        EXPECT_TRUE(host.updates.size() == 1 && !panels.marks.empty()) << "and said all the same";
        const struct {
            Mode mode;
            int mouseX;
            std::size_t zones;
            float selected;
        } clicks[] = {{edit, 100, 7, 0.25f},
                      {edit, 394, 7, 0.75f},
                      {add, 394, 7, 0.75f},
                      {remove, 20, 7, 0.75f},
                      {remove, 294, 6, 0.0f}};
        for (const auto& c : clicks) {
            click(c.mode, c.mouseX);
            EXPECT_EQ(zonesOf(*record).size(), c.zones) << c.mouseX;
            EXPECT_EQ(record->selectedZone->position, c.selected) << c.mouseX;
        }
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
        const Zone& green = *selected->prev;
        panels.setInteger(slot::tabs, 3);
        for (const int result : {1, 0}) {  // confirmed, then cancelled
            panels.onPick = [&](HostColorPick& request) {
                EXPECT_EQ(request.green, result ? 1.0f : 0.2f) << "opens on the zone's own";
                request.red = static_cast<float>(result) + 0.1f;
                request.green = 0.2f;
                request.blue = 0.3f;
                request.result = result;
                return 0;
            };
            host.updates.clear();
            panels.clickAt(slot::gradientStrip, result ? 260 : 195);  // the blend's band, its own
            EXPECT_EQ(panels.opened.back(), "Zone Colour");
            EXPECT_TRUE(green.color[0] == 1.1f && green.color[2] == 0.3f);
            EXPECT_EQ(record->selectedZone, selected);
            EXPECT_EQ(record->zoneCursor, record->zoneList);
            EXPECT_EQ(host.updates.size(), 1u);
        }
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
        while (record->selectedZone->next != nullptr)
            record->selectedZone = record->selectedZone->next;
        panels.setPercent(slot::position, 130);
        EXPECT_EQ(record->selectedZone->position, 1.3f) << "nothing is above the last";
    });
}

TEST_F(GradientEditor, SpreadSpacesOrdinaryZonesAndCentresBlends) {
    const float third = 1.0f / 3.0f, twoThirds = 2.0f / 3.0f;
    const std::pair<std::vector<Zone>, std::vector<float>> cases[] = {
        {{greyZone(0, 0), greyZone(0.1f, 0), greyZone(0.2f, 0, 1), greyZone(0.3f, 0),
          greyZone(1, 0)},
         {0.0f, third, twoThirds + third * -0.5f, twoThirds, 1.0f}},
        {{greyZone(0, 0), greyZone(0.3f, 0), greyZone(0.6f, 0, 1), greyZone(1, 0)},
         {0.0f, 0.5f, 0.75f, 1.0f}},
        {{greyZone(0, 0), greyZone(0.9f, 0, 1), greyZone(1, 0)}, {0.0f, 0.5f, 1.0f}}};
    whileOpen([&] {
        for (const auto& [before, after] : cases) {
            replaceZones(*record, before);
            panels.press(slot::spread);
            EXPECT_EQ(positions(), after);
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
    static bool untouched = true;  // the buttons remember, across panels and records
    whileOpen([&] {
        if (std::exchange(untouched, false)) {
            panels.dragTo(slot::shift, 2, 1);
            EXPECT_EQ(positions()[1], 0.251f) << "the first drag of all begins at 0";
        }
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
            replaceZones(*record, {greyZone(0.0f, 0), greyZone(0.25f, 0), greyZone(0.5f, 0),
                                   greyZone(0.999f, 0), greyZone(0.9995f, 0)});
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
        replaceZones(*record, {greyZone(0.0f, 0), greyZone(0.5f, 0), greyZone(1.0f, 0)});
        panels.dragTo(slot::shift, -2998, 10);
        EXPECT_EQ(positions()[1], 0.501f) << "each button goes on from its own last step";
    });
}

TEST_F(GradientEditor, PaintsTheBandsOverTheBoardAndAppliesBothFactorsTwice) {
    whileOpen([&] {
        panels.pixels = 0;
        drawGradient(record.get());
        EXPECT_TRUE(panels.pixels == 389 * 20 && panels.painted.size() == 389 * 20) << "once each";
        const FakePixel black{0, 0, 0}, blue{0, 0, 255}, red{255, 0, 0};
        for (const auto& [column, color] :
             {std::pair{1, black}, {97, black}, {98, blue}, {389, red}})
            EXPECT_TRUE(pixel(column, 0) == color && pixel(column, 19) == color) << column;

        const Zone half = {.color = {1, 0, 0}, .opacity = 0.5f};
        const FakePixel light{255, 127, 127}, dark{127, 0, 0};
        EXPECT_TRUE(onlyZone(half, 5, 4) == light && pixel(6, 4) == dark);
        EXPECT_TRUE(pixel(5, 5) == dark && pixel(6, 5) == light && pixel(1, 19) == dark);
        const std::pair<Zone, FakePixel> colored[] = {
            {{.color = {0, 0.6f, 0.9f}, .sat = 0}, {127, 127, 127}},
            {{.color = {0, 0.5f, 1}, .sat = 0.5f}, {95, 127, 159}},
            {{.color = {0, 1, 0}, .bright = 0.5f}, {0, 63, 0}},
            {{.color = {0, 1, 0}, .bright = 2}, {0, 1020, 0}}};  // nothing is clamped
        for (const auto& [zone, color] : colored)
            EXPECT_EQ(onlyZone(zone, 10, 3), color);
    });
}

TEST_F(GradientEditor, MarksZonesByKindAndTheSelectedOne) {
    whileOpen([&] {
        addZone(record.get(), 0.6, 1);
        moveZone(record.get(), 0.5);
        panels.log.clear();
        panels.marks.clear();
        panels.draw(panelID, panels.drawData);
        EXPECT_EQ(panels.marks,
                  (Names{"| 139 33 255", "| 236 33 255", "| 334 33 255", "^ 332 33 255",
                         "' 373 33 255", "| 431 33 255", "  527 33 255"}));
        EXPECT_EQ(panels.log, Names{"draw 52 1"});
        EXPECT_EQ(record->zoneCursor, record->zoneList);
        EXPECT_EQ(panels.borders,
                  (Names{"0 135 185 400 0", "0 135 267 400 0", "0 135 93 400 227"}));
    });
}

}  // namespace
}  // namespace tavora::testing
