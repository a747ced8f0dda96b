// The gradient of zones, edited by mouse through the real panel.

#include <gtest/gtest.h>

#include "tests/panels/settings_rig.h"

namespace tavora::studio::testing {
namespace {

TEST(ZoneEditing, Opens) {
    SettingsRig rig;
    EXPECT_FALSE(rig.open([](QWidget& panel) { EXPECT_TRUE(panel.isVisible()); }));
}

}  // namespace
}  // namespace tavora::studio::testing
