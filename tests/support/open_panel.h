#pragma once

#include <functional>
#include <gtest/gtest.h>

#include "panel/settings_panel.h"
#include "tests/support/fake_panels.h"

namespace tavora::testing {

/// A record with its settings panel, for what a user does while it is open.
class PanelTest : public ::testing::Test {
  protected:
    FakeHost host;
    FakePanels panels{host};
    Record record = newRecord();

    /// Opens the panel, forgets what opening said, lets the user act, confirms.
    HostError whileOpen(const std::function<void()>& user, bool confirm = true) {
        panels.whileOpen = [&, confirm] {
            panels.log.clear();
            host.updates.clear();
            user();
            return confirm;
        };
        return UI_callback(record.get());
    }
};

}  // namespace tavora::testing
