#include "studio/link/module_copy.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "host/services/messages.h"
#include "studio/link/module_file.h"
#include "studio/link/shader.h"
#include "tests/files/temporary_folder.h"
#include "tests/support/refusal.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

const fs::path kFolder = FAKE_FOLDER;

/// A host with one service.
void* lookUp(const char* service, int) {
    static HostMessages messages{};
    return std::string(service) == HOST_MESSAGES_SERVICE ? &messages : nullptr;
}

std::string errorOfFile(const fs::path& file, const std::string& server = {}) {
    return refusal([&] { const ModuleCopy copy(file, lookUp, server); });
}

std::ptrdiff_t openFiles() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), {});
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
        {"wrong_machine.so", HasSubstr("machine 0x7")},
        {"no_symbol.so", HasSubstr("_mod_descrip")},
        {"no_servers.so", HasSubstr("lacks functions")},
        {"no_class.so", AllOf(HasSubstr("no class ShaderHandler"), HasSubstr("Kettle \"FAKE\""))},
        {"no_flags.so", HasSubstr("without all the functions")},
        {"wants_other_version.so", HasSubstr("version 6")},
        // Named are the two that were missing, not the one that was there.
        {"wants_services.so", EndsWith("in vain for Coffee Machine, Tea Kettle")},
        {"odd_result.so", HasSubstr("result 5")},
        {"no_start.so", HasSubstr("failed to start")},
        {"unresolved.so", AllOf(HasSubstr("nobodyHasThis"), Not(HasSubstr("tavora-plugin-")))},
    };
    const std::ptrdiff_t before = openFiles();
    for (const Case& wrong : cases) {
        const std::string text = errorOfFile(kFolder / wrong.file);
        EXPECT_THAT(text, AllOf(wrong.text, HasSubstr((kFolder / wrong.file).string()),
                                Not(HasSubstr("\n"))));
    }
    unsetenv("FAKE_MODULE_ENDED");
    EXPECT_THAT(errorOfFile(kFolder / "good.so", "TAVO"), HasSubstr("ShaderHandler \"TAVO\""));
    EXPECT_STREQ(std::getenv("FAKE_MODULE_ENDED"), "1") << "shut down all the same";
    EXPECT_THAT(errorOfFile(kFolder), HasSubstr("folder"));
    EXPECT_EQ(openFiles(), before);
}

TEST(ModuleCopy, RefusesFilesThatAreNoModulesOrCutOff) {
    const TemporaryFolder folder;
    const fs::path file = folder / "not_a_module.so";
    const auto errorOfBytes = [&](const std::string& bytes) {
        putBytes(file, bytes);
        return errorOfFile(file);
    };
    EXPECT_THAT(errorOfBytes("\x7f"
                             "ELF and then nothing sensible"),
                AllOf(HasSubstr("not a loadable"), HasSubstr(file.string()),
                      Not(HasSubstr("tavora-plugin-"))));
    const std::string whole = bytesOf(kFolder / "good.so");
    EXPECT_EQ(errorOfBytes(whole), "");
    // Up to the last loaded byte; what the linker alone needs may be missing.
    std::size_t refused = 0;
    constexpr std::size_t kStep = 97;
    for (std::size_t size = 0; size < whole.size(); size += kStep) {
        const std::string error = errorOfBytes(whole.substr(0, size));
        if (error == "") break;
        EXPECT_THAT(error, AllOf(HasSubstr("plug-in module"), HasSubstr("reinstall"))) << size;
        refused = size;
    }
    EXPECT_GT(refused, whole.size() / 2);
    // The second segment's header promises what no file holds.
    std::string endless = whole;
    endless.replace(64 + 56 + 32, 8, std::string(8, '\xff'));
    EXPECT_THAT(errorOfBytes(endless), HasSubstr("ends before its last segment"));
}

TEST(ModuleCopy, EachHasGlobalsOfItsOwnAlsoWhenLoadedAgain) {
    const std::ptrdiff_t before = openFiles();
    // Descriptor numbers come back after unloading, an image must not, also if it stays.
    for (const char* file : {"good.so", "stays.so", "stays.so"}) {
        unsetenv("FAKE_MODULE_ENDED");
        {
            const ModuleCopy copy(kFolder / file, lookUp);
            const ModuleCopy other(kFolder / file, lookUp);
            EXPECT_EQ(copy.server(), "FAKE");
            { const Shader gone(copy, nullptr); }
            Shader moved(copy, nullptr);
            const Shader first(std::move(moved));
            EXPECT_EQ(first.descriptionLine(), "number 7, 1 of 2");
            EXPECT_EQ(Shader(other, nullptr).descriptionLine(), "number 7, 1 of 1");
        }
        EXPECT_STREQ(std::getenv("FAKE_MODULE_ENDED"), "1") << "shut down before it goes";
    }
    EXPECT_EQ(openFiles(), before);
}

TEST(ModuleCopy, FindsTheInterfaceOfItsOwnServer) {
    for (const char* server : {"FAKE", "OTHER"}) {
        const ModuleCopy copy(kFolder / "good.so", lookUp, server);
        const bool hasOptions = copy.activateInterface(nullptr).options != nullptr;
        EXPECT_EQ(hasOptions, server == std::string("OTHER"));
    }
}

TEST(Shader, KeepsSettingsInBlocksAndGoesThroughPasses) {
    const ModuleCopy copy(kFolder / "good.so", lookUp);
    EXPECT_EQ(newShaderSettings(copy), StateBlock{7});
    Shader shader(copy, nullptr);
    shader.load({42});
    EXPECT_EQ(shader.save(), StateBlock{42});
    EXPECT_THROW(shader.load({1.5F}), Error);
    EXPECT_EQ(shader.save(), StateBlock{42});
    shader.beginPass(0, 12, 3.5);
    EXPECT_EQ(shader.save(), StateBlock{15});
    shader.endPass();
    EXPECT_EQ(shader.save(), StateBlock{0});
    EXPECT_THAT(refusal([&] { shader.beginPass(-1, 12, 3.5); }), HasSubstr("no such mode"));

    setenv("FAKE_MODULE_REFUSES", "1", 1);
    EXPECT_THAT(refusal([&] { const Shader another(copy, nullptr); }),
                HasSubstr("no more shaders today"));
    unsetenv("FAKE_MODULE_REFUSES");
}

TEST(StateBlock, GivesBackWhatWasWrittenUpToAnItemOfAnotherKind) {
    StateBlock block;
    const BlockWriter writer(block);
    const HostSaveState& out = *writer.record();
    const std::int32_t numbers[] = {6, -1};
    const float color[] = {0.1F, 0.25F, INFINITY};
    out.writeInt(out.data, numbers, 2);
    out.writeFloat(out.data, color, 3);
    out.writeString(out.data, "Key");
    out.writeString(out.data, nullptr);
    EXPECT_EQ(block, (StateBlock{6, -1, 0.1F, 0.25F, INFINITY, "Key", ""}));

    const BlockReader reader(block);
    const HostLoadState& in = *reader.record();
    std::int32_t number[2] = {};
    float value[5] = {0, 0, 0, 7, 7};
    char name[3] = "??";
    EXPECT_EQ(in.readInt(in.data, number, 2), 2);
    EXPECT_EQ(number[1], -1);
    EXPECT_EQ(in.readFloat(in.data, value, -3), 0);
    EXPECT_EQ(in.readFloat(in.data, value, 3), 3);
    EXPECT_EQ(value[2], INFINITY);
    EXPECT_EQ(in.readString(in.data, name, 0), 0);
    EXPECT_EQ(in.readString(in.data, name, sizeof name), 1);
    EXPECT_STREQ(name, "Ke") << "cut to the buffer";
    EXPECT_EQ(in.readFloat(in.data, value + 3, 2), 0);
    EXPECT_EQ(value[3], 7) << "what is not read is left alone";
    EXPECT_EQ(in.readString(in.data, name, sizeof name), 0) << "nor is what follows";
}

TEST(ModuleFile, SummarizesItsClasses) {
    const ModuleSummary summary = summarize(kFolder / "good.so", lookUp);
    ASSERT_EQ(summary.classes.size(), 4U);
    EXPECT_EQ(summary.descriptorVersion, 3U);
    EXPECT_EQ(summary.classes[0].description, "number 7, 1 of 1");
    EXPECT_EQ(summary.classes[0].version, HOST_SHADER_HANDLER_VERSION);
    EXPECT_EQ(summary.classes[3].className, HOST_SHADER_INTERFACE_CLASS);
    EXPECT_EQ(summary.classes[3].version, HOST_SHADER_INTERFACE_VERSION);
}

TEST(ModuleFile, IsLookedForInOrder) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "second");
    putBytes(folder / "second/tavora.so", "x");
    putBytes(folder / "other.so", "x");
    const std::string path = (folder / "first").string() + ":" + (folder / "second").string();
    setenv("TAVORA_PLUGIN_PATH", path.c_str(), 1);
    EXPECT_EQ(findModule({}), folder / "second/tavora.so");
    EXPECT_EQ(findModule(folder / "other.so"), folder / "other.so");
    EXPECT_EQ(findModule(folder / "second"), folder / "second/tavora.so");
    // An option is meant: nothing else is looked at.
    EXPECT_THROW(findModule(folder / "third"), Error);
    fs::remove(folder / "second/tavora.so");
    EXPECT_THAT(
        refusal([] { findModule({}); }),
        AllOf(HasSubstr(folder / "first"), HasSubstr(folder / "second"), HasSubstr("unset it")));
    // Set but empty is as good as unset: the place beside the program counts.
    const fs::path beside = fs::read_symlink("/proc/self/exe").parent_path() / "tavora.so";
    for (const std::string none : {"unset", "", ":"}) {
        unsetenv("TAVORA_PLUGIN_PATH");
        if (none != "unset") setenv("TAVORA_PLUGIN_PATH", none.c_str(), 1);
        const std::string error = refusal([] { findModule({}); });
        EXPECT_THAT(error, HasSubstr("looked for " + beside.string() + ";"));
        EXPECT_THAT(error, HasSubstr(none == ":" ? "unset it" : "install"));
    }
    unsetenv("TAVORA_PLUGIN_PATH");
}

}  // namespace
}  // namespace tavora::studio
