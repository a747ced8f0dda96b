// The defaults that one process stores and another one meets.

#include <QPushButton>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "studio/edit/document.h"
#include "studio/edit/steps.h"
#include "studio/services/directory_info.h"
#include "studio/services/messages.h"
#include "studio/services/registry.h"
#include "tests/files/temporary_folder.h"
#include "tests/panels/settings_rig.h"
#include "tests/window/window_rig.h"

namespace tavora::studio::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr const char* kFew = R"({"edgeCoverage": 0.25, "lightList": [], "zones": [
    {"position": 0, "color": "#102030"}, {"position": 1}]})";
constexpr const char* kMany = R"({"edgeCoverage": 0.75, "lightList": ["Key", "Rim"], "zones": [
    {"position": 0}, {"position": 0.1}, {"position": 0.2}, {"position": 0.3},
    {"position": 0.4, "blend": true}, {"position": 0.5}, {"position": 1}]})";

Settings styled(const char* changes) {
    SettingsRig rig;
    rig.apply(changes);
    return rig.settings();
}

/// What a process that has just started gives a new surface.
Settings newSurface() {
    return settingsOf(newShaderSettings(ModuleCopy(TAVORA_MODULE, findService)));
}

void store(const char* changes) {
    SettingsRig rig;
    rig.apply(changes);
    rig.draw([](QWidget& panel) { click(find(panel, "Set as Default.button")); });
}

TEST(DefaultSettings, PlayNoPartInLooks) {
    const TemporaryFolder folder;
    setSettingsFolder(folder.path());
    ShadingRequest request;
    request.plugin = TAVORA_MODULE;
    request.looks = {{"Body", "noir"}};
    Report report{{0, true, {}}};
    std::set<Settings> given;
    for (const char* stored : {"", kFew, kMany}) {
        if (*stored != '\0') store(stored);
        Document document(TEST_SCENE, request, report);
        for (const char* look : {"comic", "noir"})
            document.undo.push(lookStep(document.settings, look, {1}));
        EXPECT_EQ(document.settings.at(1), document.settings.at(0)) << "what comic left behind";
        given.insert(settingsOf(document.settings.at(0)->block));
    }
    EXPECT_EQ(given.size(), 1U);
    EXPECT_EQ(newSurface(), styled(kMany)) << "the user's own still start new surfaces";
    setSettingsFolder({});
}

class UnreadableDefaults : public WindowTest {};

TEST_F(UnreadableDefaults, AreToldOnceAndStay) {
    const std::filesystem::path file = folder_ / "settings" / "tavo.default";
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
