// The user's settings folder, and the files that modules keep there.

#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

#include "host/services/directory_info.h"
#include "host/services/file_io.h"
#include "studio/services/directory_info.h"
#include "studio/services/messages.h"
#include "studio/services/panel_opening.h"
#include "tests/files/temporary_folder.h"
#include "tests/services/service_test.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;

const HostFileIo& fileIo() {
    return serviceTable<HostFileIo>(HOST_FILE_IO_SERVICE);
}

std::string contentOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void save(const std::string& path) {
    const HostSaveState* out = fileIo().openSave(path.c_str(), HOST_IO_OBJECT);
    ASSERT_NE(out, nullptr);
    const std::int32_t number = -2;
    const float numbers[] = {0.1F, -INFINITY};
    out->writeInt(out->data, &number, 1);
    out->writeFloat(out->data, numbers, 2);
    out->writeString(out->data, "Key");
    fileIo().closeSave(out);
}

/// How many items of the file above come back, in order and right.
int goodItems(const std::string& path) {
    const HostLoadState* in = fileIo().openLoad(path.c_str(), HOST_IO_OBJECT);
    if (in == nullptr) return -1;
    std::int32_t number = 0;
    float numbers[2] = {};
    char text[150] = "";
    int good = in->readInt(in->data, &number, 1);
    EXPECT_EQ(number, good == 1 ? -2 : 0);
    const int floats = in->readFloat(in->data, numbers, 2);
    EXPECT_EQ(numbers[0], floats > 0 ? 0.1F : 0);
    EXPECT_EQ(numbers[1], floats > 1 ? -INFINITY : 0);
    const int strings = in->readString(in->data, text, sizeof text);
    EXPECT_STREQ(text, strings == 1 ? "Key" : "");
    fileIo().closeLoad(in);
    return good + floats + strings;
}

TEST(SettingsFiles, ComeBackFromAFolderMadeForThem) {
    const TemporaryFolder folder;
    const fs::path settings = folder.path() / "config" / "a:colon";
    save(settings.string() + ":tavo.default");
    EXPECT_TRUE(fs::exists(settings / "tavo.default"));
    EXPECT_EQ(goodItems(settings.string() + ":tavo.default"), 4);
    // The bytes are the same on every machine.
    EXPECT_EQ(contentOf(settings / "tavo.default"), std::string("TAVORA1\n"
                                                                "i\xfe\xff\xff\xff"
                                                                "f\xcd\xcc\xcc\x3d"
                                                                "f\x00\x00\x80\xff"
                                                                "s\x03\x00\x00\x00Key",
                                                                8 + 5 + 5 + 5 + 8));
}

TEST(SettingsFiles, EndWhereTheyAreCutOff) {
    const TemporaryFolder folder;
    const std::string file = (folder.path() / "cut").string();
    save(file);
    const std::string whole = contentOf(file);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        std::ofstream(file, std::ios::binary) << whole.substr(0, size);
        const int expected = size < 13 ? 0 : static_cast<int>((size - 8) / 5);
        EXPECT_EQ(goodItems(file), std::min(expected, 3)) << size;
    }
    // A length beyond the file, and a kind that is none.
    std::ofstream(file, std::ios::binary) << whole.substr(0, 23) << "s\xff\xff\xff\xffKey";
    EXPECT_EQ(goodItems(file), 3);
    std::ofstream(file, std::ios::binary) << whole.substr(0, 13) << "q" << whole.substr(14);
    EXPECT_EQ(goodItems(file), 1);
}

TEST(SettingsFiles, AreCompleteOrAbsent) {
    const TemporaryFolder folder;
    const fs::path file = folder.path() / "settings";
    save(file.string());
    const std::string before = contentOf(file);
    const HostSaveState* out = fileIo().openSave(file.c_str(), HOST_IO_OBJECT);
    ASSERT_NE(out, nullptr);
    const float number = 1;
    out->writeFloat(out->data, &number, 1);
    EXPECT_EQ(contentOf(file), before);
    fileIo().closeSave(out);
    EXPECT_NE(contentOf(file), before);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

TEST(SettingsFiles, ThatCannotBeOpenedAreNull) {
    const TemporaryFolder folder;
    setMessageSink([](MessageKind, const std::string&) {});
    EXPECT_EQ(fileIo().openLoad((folder.path() / "absent").c_str(), HOST_IO_OBJECT), nullptr);
    EXPECT_EQ(fileIo().openLoad(folder.path().c_str(), HOST_IO_OBJECT), nullptr);
    EXPECT_EQ(fileIo().openSave(folder.path().c_str(), HOST_IO_OBJECT), nullptr);
    EXPECT_EQ(fileIo().openSave("/proc/settings/here", HOST_IO_OBJECT), nullptr);
    EXPECT_EQ(fileIo().openSave(nullptr, HOST_IO_OBJECT), nullptr);
    EXPECT_EQ(fileIo().openSave((folder.path() / "text").c_str(), HOST_IO_SCENE), nullptr);
    // A panel that opens must not take a file that is there for a missing one.
    const PanelOpening opening;
    EXPECT_EQ(fileIo().openLoad((folder.path() / "absent").c_str(), HOST_IO_OBJECT), nullptr);
    EXPECT_EQ(goodItems(folder.path()), 0);
    setMessageSink({});
    fileIo().closeSave(nullptr);
    fileIo().closeLoad(nullptr);
}

TEST(SettingsFolder, IsTheFirstThatIsSet) {
    auto* directory = serviceFunction<HostDirectoryInfo>(HOST_DIRECTORY_INFO_SERVICE);
    const auto folder = [&] {
        const char* path = directory(HOST_DIRECTORY_SETTINGS);
        return std::string(path == nullptr ? "null" : path);
    };
    for (const char* variable : {"TAVORA_DEFAULTS", "XDG_CONFIG_HOME", "HOME"})
        unsetenv(variable);
    EXPECT_EQ(folder(), "null");
    const char* const steps[][3] = {{"HOME", "/home/me", "/home/me/.config/tavora"},
                                    {"XDG_CONFIG_HOME", "relative", "/home/me/.config/tavora"},
                                    {"XDG_CONFIG_HOME", "/xdg", "/xdg/tavora"},
                                    {"TAVORA_DEFAULTS", "/mine/", "/mine"}};
    for (const auto& [variable, value, expected] : steps) {
        setenv(variable, value, 1);
        EXPECT_EQ(folder(), expected) << variable << "=" << value;
    }
    setSettingsFolder("/option");
    EXPECT_EQ(folder(), "/option");
    {
        const HiddenSettingsFolder hidden;
        EXPECT_EQ(folder(), "null");
        EXPECT_EQ(settingsFolder(), "/option") << "hidden from modules alone";
    }
    EXPECT_EQ(folder(), "/option");
    setSettingsFolder({});
    for (const char* unknown : {"Kitchen", static_cast<const char*>(nullptr)})
        EXPECT_EQ(directory(unknown), nullptr);
}

}  // namespace
}  // namespace tavora::studio
