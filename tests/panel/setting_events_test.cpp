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
    whileOpen([&] {
        std::string seen;
        for (const int translucent : {1, 0}) {
            record->inkoverTranslucent = translucent;
            for (const int slot : {slot::highlightMode, slot::outlineEnable, slot::edgeEnable,
                                   slot::slopeEnable, slot::inkEnable, slot::inkObject,
                                   slot::useAllLights, slot::accountLights, slot::accountLume}) {
                for (const int value : {1, 2, 0}) {
                    panels.setInteger(slot, value);
                    seen += joined(std::exchange(panels.log, {})) + "\n";
                    EXPECT_TRUE(outdated().empty()) << "taken: " << slot;
                }
            }
        }
        EXPECT_EQ(digest(seen), 14764148590894836382u) << seen;
        EXPECT_EQ(host.updates.size(), 2u * 8u * 3u) << "the last switch says nothing";
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
