#include "panel/controls/bindings.h"
#include "tests/support/fake_panels.h"

namespace tavora::testing {
namespace {

class SettingEvents : public PanelTest {
  protected:
    /// The slots that would show something else if all settings were shown anew.
    std::vector<int> outdated() {
        const Names before = panels.shown();
        for (int slot = 0; slot < controlSlots; ++slot)
            showSetting(slot, *record);
        const Names after = panels.shown();
        std::vector<int> slots;
        for (int slot = 0; slot < controlSlots; ++slot)
            if (after[std::size_t(slot)] != before[std::size_t(slot)]) slots.push_back(slot);
        return slots;
    }
};

TEST_F(SettingEvents, AnyPlainControlTakesAllTwenty) {
    makeDistinct(*record);
    const Record fresh = newRecord();
    whileOpen([&] {
        HostControlEvent* plain = panels.at(slot::edgeCoverage).event;
        std::vector<int> others;
        for (int slot = 0; slot < controlSlots; ++slot)
            if (hasSetting(slot) && panels.at(slot).event != plain) others.push_back(slot);
        EXPECT_EQ(others.size(), 37u - 20u);
        outdated();  // shows the one setting that an opening does not
        Copy(record.get(), fresh.get());
        record->activeTab = 9;
        panels.press(slot::maxTraceDepth);
        EXPECT_EQ(outdated(), others);
        EXPECT_EQ(host.updates, std::vector<HostInstance>{record.get()});
    });
}

TEST_F(SettingEvents, FractionsAreRoundedBeforeTheyAreDividedAndNotClamped) {
    whileOpen([&] {
        for (const double percent : {150.0, 33.3, 0.7}) {
            panels.setPercent(slot::forceColor, percent);
            const volatile auto narrowed = static_cast<float>(percent);
            EXPECT_EQ(record->forceColor, narrowed / 100.0f);
            showSetting(slot::forceColor, *record);
            const volatile float shown = record->forceColor * 100.0f;
            EXPECT_EQ(panels.at(slot::forceColor).value.of.number, shown);
        }
        EXPECT_EQ(host.updates.size(), 3u);
    });
}

TEST_F(SettingEvents, SwitchesDrawAndGhostTheirGroups) {
    const struct {
        int slot, value;
        const char* drawn;
    } cases[] = {
        {slot::highlightMode, 1, "14 1,11 1,4 1,10 1,"},
        {slot::highlightMode, 2, "14 1,11 1,4 1,10 2,"},
        {slot::highlightMode, 0, "14 2,11 2,4 0,10 2,"},
        {slot::outlineEnable, 1, "18 1,19 1,22 1,"},
        {slot::outlineEnable, 0, "18 2,19 2,22 2,"},
        {slot::edgeEnable, 1, "30 1,32 1,33 1,"},
        {slot::edgeEnable, 0, "30 2,32 2,33 2,"},
        {slot::slopeEnable, 1, "38 1,39 1,40 1,41 1,42 1,44 1,"},
        {slot::slopeEnable, 0, "38 2,39 2,40 2,41 2,42 2,44 2,"},
        {slot::inkEnable, 1, "57 1,59 1,63 1,70 1,57 2,58 2,59 2,60 2,"},
        {slot::inkEnable, 0, "57 2,59 2,63 2,70 2,57 2,58 2,59 2,60 2,"},
        {slot::inkObject, 0, ""},
        {slot::useAllLights, 0, "48 1,37 1,36 1,"},
        {slot::useAllLights, 1, "48 2,37 2,36 2,"},
        {slot::accountLights, 1, "72 1,"},
        {slot::accountLights, 0, "72 2,"},
    };
    record->inkoverTranslucent = 1;
    whileOpen([&] {
        for (const auto& one : cases) {
            panels.log.clear();
            host.updates.clear();
            panels.setInteger(one.slot, one.value);
            std::string drawn;
            for (const std::string& entry : panels.log)
                drawn += entry.substr(5) + ",";
            EXPECT_EQ(drawn, one.drawn) << one.slot << " to " << one.value;
            EXPECT_TRUE(outdated().empty()) << "taken: " << one.slot;
            EXPECT_EQ(host.updates.size(), 1u) << one.slot;
        }
        panels.log.clear();
        panels.setInteger(slot::accountLume, 1);
        EXPECT_EQ(record->selectedZone->accountLume, 1);
        EXPECT_EQ(host.updates.size(), 1u) << "this one says nothing to the host";
        record->inkoverTranslucent = 0;
        panels.setInteger(slot::inkEnable, 1);
        EXPECT_EQ(panels.log.size(), 4u) << "the colours are no longer ghosted at the end";
    });
}

TEST_F(SettingEvents, WithoutASelectedZoneItsControlsDoNothing) {
    whileOpen([&] {
        record->selectedZone = nullptr;
        for (const int slot :
             {slot::position, slot::opacity, slot::bright, slot::sat, slot::accountLightOpac,
              slot::trans, slot::accountLights, slot::accountLume})
            panels.press(slot);
        EXPECT_TRUE(host.updates.empty() && panels.log.empty());
    });
}

TEST_F(SettingEvents, SwatchesPickFromTheColourThatIsShown) {
    const struct {
        int swatch, color;
        const char* title;
    } cases[] = {{slot::highlightSwatch, slot::highlightColor, "CelSpec Colour"},
                 {slot::outlineSwatch, slot::outlineColor, "Outline Colour"},
                 {slot::edgeSwatch, slot::edgeColor, "Edge Colour"},
                 {slot::slopeTopSwatch, slot::slopeTopColor, "Slope Colour"},
                 {slot::slopeBottomSwatch, slot::slopeBottomColor, "Slope Colour"},
                 {slot::inkSwatch, slot::inkColor, "InkOver Colour"},
                 {slot::inkPaintSwatch, slot::inkPaintColor, "InkOver Paint Colour"}};
    whileOpen([&] {
        for (const auto& one : cases) {
            const auto pick = [&](int result, int error) {
                panels.onPick = [=](HostColorPick& request) {
                    EXPECT_EQ(request.red, 128.0f / 255.0f);
                    request.red = 0.5f;
                    request.green = 0.999f;
                    request.blue = 1.0f;
                    request.result = result;
                    return error;
                };
                panels.press(one.swatch);
                EXPECT_TRUE(outdated().empty()) << "taken: " << one.color;
                return panels.shown()[std::size_t(one.color)];
            };
            int* typed = panels.at(one.color).value.of.vector;
            typed[0] = 128;
            typed[1] = typed[2] = 0;
            EXPECT_EQ(pick(0, 0), "128 0 0") << "cancelled: the typed colour stays";
            EXPECT_EQ(pick(1, 1), "128 0 0") << "failed, though it claims a result";
            EXPECT_EQ(pick(1, 0), "127 254 255") << "shown without its fraction";
            EXPECT_EQ(panels.opened.back(), one.title);
        }
        EXPECT_EQ(host.updates.size(), 3 * std::size(cases));
    });
}

}  // namespace
}  // namespace tavora::testing
