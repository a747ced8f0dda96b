#include "studio/link/module_copy.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "host/services/messages.h"
#include "studio/link/module_file.h"
#include "studio/link/shader.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const std::filesystem::path kFolder = FAKE_FOLDER;

/// A host with one service.
void* lookUp(const char* service, int) {
    static HostMessages messages{};
    return std::string(service) == HOST_MESSAGES_SERVICE ? &messages : nullptr;
}

std::string errorOf(const std::filesystem::path& file, const std::string& server = {}) {
    try {
        const ModuleCopy copy(file, lookUp, server);
    } catch (const Error& error) {
        return error.what();
    }
    return "no error";
}

TEST(ModuleCopy, SaysWhatIsWrongWithWhichFile) {
    struct Case {
        const char* file;
        testing::Matcher<std::string> text;
    };
    const Case cases[] = {
        {"absent.so", HasSubstr("no such")},
        {"wrong_sync.so", HasSubstr("0x12345678")},
        {"wrong_version.so", HasSubstr("descriptor version 9")},
        {"no_symbol.so", HasSubstr("_mod_descrip")},
        {"no_class.so", AllOf(HasSubstr("no class ShaderHandler"), HasSubstr("Kettle \"FAKE\""))},
        {"wants_other_version.so", HasSubstr("version 6")},
        // Named are the two that were missing, not the one that was there.
        {"wants_services.so",
         AllOf(HasSubstr("Coffee Machine, Tea Kettle"), Not(HasSubstr(HOST_MESSAGES_SERVICE)))},
        {"odd_result.so", HasSubstr("result 5")},
        {"no_start.so", HasSubstr("failed to start")},
        {"unresolved.so", AllOf(HasSubstr("nobodyHasThis"), Not(HasSubstr("/proc/")))},
    };
    for (const Case& wrong : cases) {
        const std::string text = errorOf(kFolder / wrong.file);
        EXPECT_THAT(text, wrong.text);
        EXPECT_THAT(text, HasSubstr((kFolder / wrong.file).string()));
        EXPECT_THAT(text, Not(HasSubstr("\n")));
    }
    EXPECT_THAT(errorOf(kFolder / "good.so", "TAVO"), HasSubstr("ShaderHandler \"TAVO\""));
    EXPECT_THAT(errorOf(kFolder), HasSubstr("folder"));
}

TEST(ModuleCopy, RefusesFilesThatAreNoModulesOrCutOff) {
    const auto file = std::filesystem::path(testing::TempDir()) / "not_a_module.so";
    const auto errorOfBytes = [&](const std::string& bytes) {
        std::ofstream(file, std::ios::binary) << bytes;
        return errorOf(file);
    };
    EXPECT_THAT(
        errorOfBytes("\x7f"
                     "ELF and then nothing sensible"),
        AllOf(HasSubstr("not a loadable"), HasSubstr(file.string()), Not(HasSubstr("/proc/"))));
    std::ifstream in(kFolder / "good.so", std::ios::binary);
    const std::string whole{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(errorOfBytes(whole), "no error");
    // Up to the last loaded byte; what the linker alone needs may be missing.
    std::size_t refused = 0;
    constexpr std::size_t kStep = 97;
    for (std::size_t size = 0; size < whole.size(); size += kStep) {
        const std::string error = errorOfBytes(whole.substr(0, size));
        if (error == "no error") break;
        EXPECT_THAT(error, AllOf(HasSubstr("plug-in module"), HasSubstr("reinstall"))) << size;
        refused = size;
    }
    EXPECT_GT(refused, whole.size() / 2);
    // A header that promises what no file holds.
    std::string endless = whole;
    endless.replace(64 + 32, 8, std::string(8, '\xff'));
    EXPECT_THAT(errorOfBytes(endless), HasSubstr("ends before its last segment"));
    std::filesystem::remove(file);
}

TEST(ModuleCopy, CopiesHaveGlobalsOfTheirOwn) {
    std::vector<std::unique_ptr<ModuleCopy>> copies;
    for (int i = 0; i < 5; ++i)
        copies.push_back(std::make_unique<ModuleCopy>(kFolder / "good.so", lookUp));
    const Shader first(*copies[0], nullptr);
    const Shader second(*copies[0], nullptr);
    const Shader other(*copies[4], nullptr);
    EXPECT_EQ(second.descriptionLine(), "number 7 of 2");
    EXPECT_EQ(other.descriptionLine(), "number 7 of 1");
    EXPECT_NE(&copies[0]->descriptor(), &copies[4]->descriptor());
    EXPECT_EQ(copies[0]->server(), "FAKE");
}

TEST(ModuleCopy, IsFreshWhenLoadedAgain) {
    // Descriptor numbers come back after unloading: an image must not.
    for (int round = 0; round < 3; ++round) {
        const ModuleCopy copy(kFolder / "good.so", lookUp);
        const Shader shader(copy, nullptr);
        EXPECT_EQ(shader.descriptionLine(), "number 7 of 1");
        unsetenv("FAKE_MODULE_ENDED");
    }
    EXPECT_STREQ(std::getenv("FAKE_MODULE_ENDED"), "1") << "shut down before it goes";
}

TEST(Shader, KeepsSettingsInBlocks) {
    const ModuleCopy copy(kFolder / "good.so", lookUp);
    EXPECT_EQ(newShaderSettings(copy), StateBlock{7});
    Shader shader(copy, nullptr);
    shader.load({42});
    EXPECT_EQ(shader.save(), StateBlock{42});
    EXPECT_THROW(shader.load({1.5F}), Error);
    EXPECT_EQ(shader.save(), StateBlock{42});
    // This module has no pass callbacks.
    shader.beginPass(0, 1, 0.5);
    shader.endPass();
}

TEST(Shader, PassesOnWhyNoneCouldBeMade) {
    const ModuleCopy copy(kFolder / "good.so", lookUp);
    setenv("FAKE_MODULE_REFUSES", "1", 1);
    try {
        const Shader shader(copy, nullptr);
        ADD_FAILURE() << "a shader was made";
    } catch (const Error& error) {
        EXPECT_THAT(error.what(), HasSubstr("no more shaders today"));
    }
    unsetenv("FAKE_MODULE_REFUSES");
}

TEST(ModuleFile, SummarizesItsClasses) {
    const ModuleSummary summary = summarize(kFolder / "good.so", lookUp);
    ASSERT_EQ(summary.classes.size(), 2U);
    EXPECT_EQ(summary.descriptorVersion, 3U);
    EXPECT_EQ(summary.classes[0].description, "number 7 of 1");
    EXPECT_EQ(summary.classes[0].version, HOST_SHADER_HANDLER_VERSION);
    EXPECT_EQ(summary.classes[1].className, HOST_SHADER_INTERFACE_CLASS);
    EXPECT_EQ(summary.classes[1].version, HOST_SHADER_INTERFACE_VERSION);
}

TEST(ModuleFile, IsLookedForInOrder) {
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(testing::TempDir()) / "plugin_places";
    fs::create_directories(folder / "second");
    std::ofstream(folder / "second" / "tavora.so") << "x";
    std::ofstream(folder / "other.so") << "x";
    const std::string path = (folder / "first").string() + ":" + (folder / "second").string();
    setenv("TAVORA_PLUGIN_PATH", path.c_str(), 1);
    EXPECT_EQ(findModule({}), folder / "second" / "tavora.so");
    EXPECT_EQ(findModule((folder / "other.so").string()), folder / "other.so");
    EXPECT_EQ(findModule((folder / "second").string()), folder / "second" / "tavora.so");
    // An option is meant: nothing else is looked at.
    EXPECT_THROW(findModule((folder / "third").string()), Error);
    fs::remove_all(folder);
    try {
        findModule({});
        ADD_FAILURE() << "found one";
    } catch (const Error& error) {
        EXPECT_THAT(error.what(),
                    AllOf(HasSubstr((folder / "first").string()),
                          HasSubstr((folder / "second").string()), HasSubstr("unset it")));
    }
    // Set but empty is as good as unset: the place beside the program counts.
    const std::string beside = fs::read_symlink("/proc/self/exe").parent_path().string();
    for (const char* none : {static_cast<const char*>(nullptr), "", ":"}) {
        unsetenv("TAVORA_PLUGIN_PATH");
        if (none != nullptr) setenv("TAVORA_PLUGIN_PATH", none, 1);
        try {
            EXPECT_EQ(findModule({}).parent_path(), beside);
        } catch (const Error& error) {
            EXPECT_THAT(error.what(), HasSubstr(beside));
        }
    }
    unsetenv("TAVORA_PLUGIN_PATH");
}

}  // namespace
}  // namespace tavora::studio
