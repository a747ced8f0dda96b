
#include <fstream>
#include <gmock/gmock.h>
#include <set>

#include "studio/edit/undo_steps.h"
#include "studio/services/directory_info.h"
#include "studio/services/messages.h"
#include "studio/services/registry.h"
#include "tests/window/window_rig.h"

namespace tavora::studio::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class DefaultSettings : public WindowTest {};

TEST_F(DefaultSettings, PlayNoPartInLooks) {
    request_.shading.looks = {{"Body", "noir"}};
    std::set<Settings> given;
    Settings last;
    for (const char* stored :
         {"", R"({"edgeCoverage": 0.25, "zones": [{"position": 0, "color": "#102030"},
                                                  {"position": 1}], "lightList": []})",
          R"({"edgeCoverage": 0.75, "lightList": ["Key", "Rim"], "zones": [{"position": 0},
              {"position": 0.2}, {"position": 0.4, "blend": true}, {"position": 1}]})"}) {
        if (*stored != '\0') {
            SettingsRig rig;
            rig.apply(stored);
            last = rig.settings();
            rig.draw([](QWidget& panel) { click(find(panel, "Set as Default.button")); });
        }
        Document document(scene_, request_.shading, report_);
        for (const char* look : {"comic", "noir"})
            document.undo.push(lookStep(document.settings, look, {1}));
        EXPECT_EQ(document.settings.at(1), document.settings.at(0)) << "what comic left behind";
        given.insert(settingsOf(document.settings.at(0)->block));
    }
    EXPECT_EQ(given.size(), 1U);
    EXPECT_EQ(settingsOf(newShaderSettings(ModuleCopy(TAVORA_MODULE, findService))), last)
        << "the user's own still start new surfaces";
}

TEST_F(DefaultSettings, ThatCannotBeReadAreToldOnceAndStay) {
    const std::filesystem::path file = folder_ / "settings/tavo.default";
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "mine";
    std::filesystem::resize_file(file, 300U << 20U);  // larger than what is read
    start();
    std::vector<std::string> said;
    setMessageSink([&](MessageKind, const std::string& text) { said.push_back(text); });
    inPanel({[](QWidget&) {}});
    inPanel({[&](QWidget& panel) {
        EXPECT_THAT(said, ElementsAre(HasSubstr("cannot be read")));
        click(find(panel, "Set as Default.button"));
        EXPECT_THAT(said, Contains(HasSubstr("is not replaced")));
    }});
    EXPECT_EQ(std::filesystem::file_size(file), 300U << 20U);
    setMessageSink({});
}

}  // namespace
}  // namespace tavora::studio::testing
