// Services as modules use and misuse them.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/services/color_picker.h"
#include "host/services/panels.h"
#include "host/services/raster.h"
#include "studio/services/directory_info.h"
#include "studio/services/instance_update.h"
#include "studio/services/messages.h"
#include "studio/services/panel_opening.h"
#include "studio/services/registry.h"
#include "studio/services/service_binding.h"
#include "studio/services/service_tables.h"
#include "tests/files/temporary_folder.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

TEST(Registry, OffersNothingItLacks) {
    for (const char* name : {HOST_PANELS_SERVICE, HOST_RASTER_SERVICE, HOST_COLOR_PICKER_SERVICE,
                             "", "lw item info 5", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(findService(name, HOST_USE_TRANSIENT), nullptr);
    }
}

TEST(Mutexes, AreRecursiveAndIndependent) {
    const auto& service = kMultithreading;
    HostMutexId object = service.create();
    EXPECT_EQ(service.lock(object, 0), 1);
    EXPECT_EQ(service.lock(object, 0), 1);
    EXPECT_EQ(service.unlock(object, 0), 1);

    // Still held once: another thread waits for number 0, not for number 15.
    std::promise<void> gotOther;
    std::future<void> other = gotOther.get_future();
    std::future<void> same = std::async(std::launch::async, [&] {
        service.lock(object, HOST_MUTEXES_PER_OBJECT - 1);
        service.unlock(object, HOST_MUTEXES_PER_OBJECT - 1);
        gotOther.set_value();
        EXPECT_EQ(service.unlock(object, 0), 0);  // not this thread's
        service.lock(object, 0);
        service.unlock(object, 0);
    });
    EXPECT_EQ(other.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_EQ(same.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    EXPECT_EQ(service.unlock(object, 0), 1);
    EXPECT_EQ(same.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_EQ(service.unlock(object, 0), 0);  // held no more

    for (const int number : {-1, int{HOST_MUTEXES_PER_OBJECT}})
        EXPECT_EQ(service.lock(object, number), 0);
    EXPECT_EQ(service.lock(nullptr, 0), 0);
    service.destroy(object);
    service.destroy(nullptr);
}

TEST(Messages, ReachTheSinkAsOneLine) {
    const auto& service = kMessages;
    std::vector<std::pair<MessageKind, std::string>> heard;
    setMessageSink(
        [&](MessageKind kind, const std::string& text) { heard.emplace_back(kind, text); });
    service.warning("Settings directory not found", "Default settings not saved!");
    service.error("Out of order", nullptr);
    service.info("Done", "");
    {
        const QuietMessages quiet;
        { const QuietMessages inside; }
        service.error("Out of order", nullptr);
        std::thread([&] { service.info("From another thread", nullptr); }).join();
    }
    setMessageSink({});
    const decltype(heard) expected = {
        {MessageKind::Warning, "Settings directory not found: Default settings not saved!"},
        {MessageKind::Error, "Out of order"},
        {MessageKind::Info, "Done"},
        {MessageKind::Info, "From another thread"}};
    EXPECT_EQ(heard, expected);
    testing::internal::CaptureStderr();
    service.warning("Careful", "now");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tavora: warning: Careful: now\n");
}

TEST(InstanceUpdate, ReachesTheListener) {
    int instance = 0, heard = 0;
    setInstanceListener([&](const std::string& className, HostInstance changed) {
        heard += className == "ShaderHandler" && changed == &instance ? 1 : 100;
    });
    instanceUpdate("ShaderHandler", &instance);
    setInstanceListener({});
    instanceUpdate("Nobody listens", &instance);
    EXPECT_EQ(heard, 1);
}

std::vector<std::string> namesOf(int itemType) {
    std::vector<std::string> names;
    for (HostItemId item = kItemInfo.first(itemType, nullptr); item != nullptr;
         item = kItemInfo.next(item)) {
        names.emplace_back(kItemInfo.name(item));
    }
    return names;
}

/// Two objects of one triangle, three lights, a camera; the second surface has
/// a texture whose left texel is red and half clear, its right one solid.
struct SmallScene {
    SmallScene() {
        scene.surfaces.resize(2);
        scene.images.push_back({"image", 2, 1, {255, 0, 0, 51, 102, 0, 0, 255}});
        TextureUse use;
        use.magnify = use.minify = Filter::Nearest;
        use.mipmaps = false;
        scene.surfaces[0].translucencyTexture.emplace().image = -1;  // of no source
        scene.surfaces[1].baseColorTexture = use;
        scene.surfaces[1].translucencyTexture = use;
        scene.surfaces[1].translucencyFactor = 0.5F;
        auto mesh = std::make_shared<Mesh>();
        mesh->positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
        mesh->normals.assign(3, {0, 0, 1});
        mesh->uvs[0] = {{0, 0}, {1, 0}, {0, 1}};
        mesh->uvs[1] = {{1, 0}, {0, 0}, {1, 1}};
        mesh->triangles = {{0, 1, 2}};
        for (const char* name : {"left", "right"}) {
            auto object = std::make_unique<Object>();
            object->name = name;
            object->parts.push_back({mesh, 1, 0});
            scene.objects.push_back(std::move(object));
        }
        scene.cameras.resize(2);
        scene.cameras[0].name = "eye";
        scene.cameras[1].name = "ear";
        for (std::size_t i = 0; i < lights.size(); ++i) {
            lights[i].name = std::array{"Key", "Fill", "Key.001"}[i];
            lightSet.lights.push_back({&lights[i], Imath::V3d(0.25, 0.5, 1), 1});
        }
        lightSet.ambient = {0.1, 0.2, 0.3};
    }
    Scene scene;
    std::array<Light, 3> lights;
    LightSet lightSet;
};

/// An address inside of something, which is no one's identity.
template <class Id, class Thing>
Id inside(const Thing& thing) {
    return reinterpret_cast<Id>(const_cast<char*>(reinterpret_cast<const char*>(&thing)) + 1);
}

TEST(ItemInfo, WalksTheBoundScene) {
    const SmallScene small;
    const SceneIndex index(small.scene);
    EXPECT_THAT(namesOf(HOST_ITEM_LIGHT), ElementsAre());
    const ServiceBinding binding(index, small.lightSet);
    EXPECT_THAT(namesOf(HOST_ITEM_LIGHT), ElementsAre("Key", "Fill", "Key.001"));
    EXPECT_THAT(namesOf(HOST_ITEM_OBJECT), ElementsAre("left", "right"));
    EXPECT_THAT(namesOf(HOST_ITEM_CAMERA), ElementsAre("eye", "ear"));
    EXPECT_EQ(kItemInfo.first(7, nullptr), nullptr);
    EXPECT_EQ(kItemInfo.first(HOST_ITEM_OBJECT, kItemInfo.first(HOST_ITEM_OBJECT, nullptr)),
              nullptr);
    for (HostItemId unknown :
         {HostItemId{}, inside<HostItemId>(small), inside<HostItemId>(small.lightSet.lights[1]),
          inside<HostItemId>(small.scene.cameras[0])}) {
        EXPECT_EQ(kItemInfo.name(unknown), nullptr);
        EXPECT_EQ(kItemInfo.next(unknown), nullptr);
    }
}

TEST(ServiceBinding, BelongsToItsThreadAndScope) {
    const SmallScene small;
    const SceneIndex index(small.scene);
    const LightSet dark;
    const ServiceBinding outer(index, small.lightSet);
    {
        const ServiceBinding inner(index, dark);
        EXPECT_THAT(namesOf(HOST_ITEM_LIGHT), ElementsAre());
    }
    EXPECT_EQ(namesOf(HOST_ITEM_LIGHT).size(), 3U);
    std::thread([] { EXPECT_EQ(ServiceBinding::current(), nullptr); }).join();
}

TEST(LightInfo, TellsColorsAndFlags) {
    SmallScene small;
    small.lights[1].makesHighlights = false;
    small.lights[1].range = 10;
    const SceneIndex index(small.scene);
    const ServiceBinding binding(index, small.lightSet);
    const auto& service = kLightInfo;
    double color[3] = {-1, -1, -1};
    service.ambient(0, color);
    EXPECT_THAT(color, ElementsAre(0.1, 0.2, 0.3));
    HostItemId first = kItemInfo.first(HOST_ITEM_LIGHT, nullptr);
    service.color(first, 0, color);
    EXPECT_THAT(color, ElementsAre(0.25, 0.5, 1));
    EXPECT_EQ(service.flags(first), 0);
    // A range counts only where light falls off.
    EXPECT_EQ(service.flags(kItemInfo.next(first)), HOST_LIGHT_NO_SPECULAR);
    small.lightSet.falloff = true;
    EXPECT_EQ(service.flags(kItemInfo.next(first)),
              HOST_LIGHT_NO_SPECULAR | HOST_LIGHT_LIMITED_RANGE);
    service.color(nullptr, 0, color);
    EXPECT_THAT(color, ElementsAre(0, 0, 0));
}

TEST(Textures, AreFoundByChannelAndReadAtThePolygon) {
    SmallScene small;
    const SceneIndex index(small.scene);
    const ServiceBinding binding(index, small.lightSet);
    const auto& textures = kTextureFunctions;
    const auto find = kSurfaceFunctions.channelTexture;
    EXPECT_EQ(find(index.surfaceId(0), HOST_CHANNEL_BASE_COLOR), nullptr);
    EXPECT_EQ(find(index.surfaceId(0), HOST_CHANNEL_TRANSLUCENCY), nullptr) << "of no image";
    EXPECT_EQ(find(index.surfaceId(1), "Bump"), nullptr);
    for (HostSurfaceId unknown : {HostSurfaceId{}, inside<HostSurfaceId>(small.scene.surfaces[1])})
        EXPECT_EQ(find(unknown, HOST_CHANNEL_BASE_COLOR), nullptr);
    HostTextureId base = find(index.surfaceId(1), HOST_CHANNEL_BASE_COLOR);
    HostTextureId translucency = find(index.surfaceId(1), HOST_CHANNEL_TRANSLUCENCY);
    ASSERT_NE(base, nullptr);
    ASSERT_NE(translucency, nullptr);

    for (const auto& [parameter, expected] : {std::pair(HOST_LAYER_SCALE, 1.0),
                                              {HOST_LAYER_POSITION, 0.0},
                                              {HOST_LAYER_ROTATION, 0.0}}) {
        double all[3] = {-1, -1, -1};
        EXPECT_EQ(textures.layerParameter(nullptr, parameter, all), 0);
        EXPECT_EQ(textures.layerParameter(textures.firstLayer(base), parameter, all), 1);
        EXPECT_THAT(all, ElementsAre(expected, expected, expected));
        EXPECT_EQ(textures.layerParameter(textures.firstLayer(base), 99, all), 0);
    }

    HostTexturePoint point{};
    point.polygonId = index.polygonId(1, 0);
    point.vertexWeights[0] = 0.9F;
    point.vertexWeights[1] = 0.1F;
    double color[3];
    EXPECT_DOUBLE_EQ(textures.evaluate(base, &point, color), 51 / 255.0);
    EXPECT_THAT(color, ElementsAre(1, 0, 0));
    EXPECT_DOUBLE_EQ(textures.evaluate(translucency, &point, color), 0.5);
    small.scene.surfaces[1].translucencyComponent = Component::Alpha;
    EXPECT_DOUBLE_EQ(textures.evaluate(translucency, &point, color), 51 / 255.0 * 0.5);
    small.scene.surfaces[1].baseColorTexture->uvSet = 1;  // the other way about
    EXPECT_DOUBLE_EQ(textures.evaluate(base, &point, color), 1);
    EXPECT_THAT(color, ElementsAre(0.4, 0, 0));

    for (HostPolygonId unknown : {HostPolygonId{}, index.polygonId(1, 1), index.polygonId(2, 0)}) {
        point.polygonId = unknown;
        color[0] = 1;
        EXPECT_EQ(textures.evaluate(base, &point, color), 0);
        EXPECT_THAT(color, ElementsAre(0, 0, 0));
    }
    EXPECT_EQ(textures.evaluate(nullptr, &point, color), 0);
}

TEST(Textures, AreTheirMeanWhereASpotCoversThemWhole) {
    SmallScene small;
    TextureUse& use = *small.scene.surfaces[1].baseColorTexture;
    use.minify = Filter::Linear;
    use.mipmaps = true;
    use.scale = {8, 4};  // of which a spot a fifth as wide as the triangle covers one
    const SceneIndex index(small.scene);
    const ServiceBinding binding(index, small.lightSet);
    HostTexturePoint point{};
    point.polygonId = index.polygonId(1, 0);
    point.vertexWeights[0] = 1;
    for (const int vertex : {0, 1, 2})
        point.vertexPositions[vertex][0] = vertex == 1 ? 4 : 3;
    point.vertexPositions[2][1] = 1;
    const auto alpha = [&](double spot) {
        double color[3];
        point.spotSize = spot;
        return kTextureFunctions.evaluate(
            kSurfaceFunctions.channelTexture(index.surfaceId(1), HOST_CHANNEL_BASE_COLOR), &point,
            color);
    };
    EXPECT_NEAR(alpha(0.2), (51 + 255) / 2 / 255.0, 1e-3);
    EXPECT_NEAR(alpha(0.02), 51 / 255.0, 1e-3);
}

const HostSaveState* openSave(const fs::path& file) {
    return kFileIo.openSave(file.c_str(), HOST_IO_OBJECT);
}

void save(const fs::path& file) {
    const HostSaveState* out = openSave(file);
    ASSERT_NE(out, nullptr);
    const std::int32_t number = -2;
    const float numbers[] = {0.1F, -INFINITY};
    out->writeInt(out->data, &number, 1);
    out->writeFloat(out->data, numbers, 2);
    out->writeString(out->data, "Key");
    kFileIo.closeSave(out);
}

/// What comes back of an integer, two floats and a text, up to what does not.
std::string itemsOf(const fs::path& file) {
    const HostLoadState* in = kFileIo.openLoad(file.c_str(), HOST_IO_OBJECT);
    if (in == nullptr) return "not opened";
    std::int32_t number = 0;
    float numbers[2] = {};
    char text[4] = "";
    std::string items;
    if (in->readInt(in->data, &number, 1) == 1) items += fmt::format("{}", number);
    const int floats = in->readFloat(in->data, numbers, 2);
    for (int i = 0; i < floats; ++i)
        items += fmt::format(" {}", numbers[i]);
    if (in->readString(in->data, text, sizeof text) == 1) items += fmt::format(" {}", text);
    kFileIo.closeLoad(in);
    return items;
}

TEST(SettingsFiles, ComeBackFromAFolderMadeForThem) {
    const TemporaryFolder folder;
    const fs::path settings = folder / "config/a:colon";
    save(settings.string() + ":tavo.default");
    EXPECT_EQ(itemsOf(settings / "tavo.default"), "-2 0.1 -inf Key");
    // The bytes are the same on every machine.
    const std::string bytes(
        "TAVORA1\n"
        "i\xfe\xff\xff\xff"
        "f\xcd\xcc\xcc\x3d"
        "f\x00\x00\x80\xff"
        "s\x03\x00\x00\x00Key",
        8 + 5 + 5 + 5 + 8);
    EXPECT_EQ(bytesOf(settings / "tavo.default"), bytes);

    const HostSaveState* out = openSave(settings / "tavo.default");
    out->writeString(out->data, nullptr);
    EXPECT_EQ(bytesOf(settings / "tavo.default"), bytes) << "complete or absent";
    kFileIo.closeSave(out);
    EXPECT_EQ(bytesOf(settings / "tavo.default"), bytes.substr(0, 8) + std::string("s\0\0\0\0", 5));
}

TEST(SettingsFiles, EndWhereTheyAreCutOffOrDamaged) {
    const TemporaryFolder folder;
    const fs::path file = folder / "cut";
    save(file);
    const std::string whole = bytesOf(file);
    const auto itemsIn = [&](const std::string& bytes) {
        putBytes(file, bytes);
        return itemsOf(file);
    };
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const char* expected[] = {"", "-2", "-2 0.1", "-2 0.1 -inf"};
        EXPECT_EQ(itemsIn(whole.substr(0, size)),
                  expected[size < 8 ? 0 : std::min<std::size_t>((size - 8) / 5, 3)]);
    }
    // A length beyond the file, a kind that is none, another mark.
    EXPECT_EQ(itemsIn(whole.substr(0, 23) + "s\xff\xff\xff\xffKey"), "-2 0.1 -inf");
    EXPECT_EQ(itemsIn(whole.substr(0, 13) + "q" + whole.substr(14)), "-2");
    EXPECT_EQ(itemsIn("TAVORA2\n" + whole.substr(8)), "");
    // Nothing is read after what failed.
    putBytes(file, whole.substr(0, 8) + std::string("s\xff\xff\xff\xffs\x01\0\0\0K", 11));
    const HostLoadState* in = kFileIo.openLoad(file.c_str(), HOST_IO_OBJECT);
    std::int32_t number = 0;
    char text[4] = "";
    EXPECT_EQ(in->readInt(in->data, &number, -3), 0);
    EXPECT_EQ(in->readString(in->data, text, sizeof text), 0);
    EXPECT_EQ(in->readString(in->data, text, sizeof text), 0);
    kFileIo.closeLoad(in);
}

TEST(SettingsFiles, ThatCannotBeOpenedAreNullAndTheUserHearsOfItOnce) {
    const TemporaryFolder folder;
    int heard = 0;
    setMessageSink([&](MessageKind, const std::string&) { ++heard; });
    EXPECT_EQ(itemsOf(folder / "absent"), "not opened");
    EXPECT_EQ(heard, 0);
    EXPECT_EQ(openSave("/proc/settings/here"), nullptr);
    EXPECT_EQ(kFileIo.openSave(nullptr, HOST_IO_OBJECT), nullptr);
    EXPECT_EQ(kFileIo.openSave((folder / "text").c_str(), HOST_IO_SCENE), nullptr);
    // There, but readable by nobody: a link to itself. Twice, and well in between.
    const fs::path link = folder / "link";
    for (const int times : {1, 2}) {
        heard = times - 1;
        fs::create_symlink("link", link);
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(itemsOf(link), "not opened");
        EXPECT_EQ(heard, times);
        EXPECT_EQ(openSave(link), nullptr) << "nothing is replaced unread";
        {
            // A panel that opens must not take it for a missing one.
            const PanelOpening opening;
            EXPECT_EQ(itemsOf(folder / "absent"), "not opened");
            EXPECT_EQ(itemsOf(link), "");
        }
        fs::remove(link);
        save(link);
        EXPECT_EQ(itemsOf(link), "-2 0.1 -inf Key");
        fs::remove(link);
    }
    EXPECT_EQ(openSave(folder.path()), nullptr);
    setMessageSink({});
    kFileIo.closeSave(nullptr);
    kFileIo.closeLoad(nullptr);
}

TEST(SettingsFolder, IsTheFirstThatIsSet) {
    const auto folder = [&] {
        const char* path = directoryInfo(HOST_DIRECTORY_SETTINGS);
        return std::string(path == nullptr ? "null" : path);
    };
    for (const char* variable : {"TAVORA_DEFAULTS", "XDG_CONFIG_HOME", "HOME"})
        unsetenv(variable);
    EXPECT_EQ(folder(), "null");
    const char* const steps[][3] = {{"HOME", "me", "null"},
                                    {"HOME", "/home/me", "/home/me/.config/tavora"},
                                    {"XDG_CONFIG_HOME", "relative", "/home/me/.config/tavora"},
                                    {"XDG_CONFIG_HOME", "/xdg", "/xdg/tavora"},
                                    {"TAVORA_DEFAULTS", "/mine/", "/mine"},
                                    {"TAVORA_DEFAULTS", "/", "/"}};
    for (const auto& [variable, value, expected] : steps) {
        setenv(variable, value, 1);
        EXPECT_EQ(folder(), expected) << variable << "=" << value;
    }
    setSettingsFolder("/option");
    {
        const HiddenSettingsFolder hidden;
        EXPECT_EQ(folder(), "null");
        EXPECT_EQ(settingsFolder(), "/option") << "hidden from modules alone";
    }
    EXPECT_EQ(folder(), "/option");
    setSettingsFolder({});
    for (const char* unknown : {"Kitchen", static_cast<const char*>(nullptr)})
        EXPECT_EQ(directoryInfo(unknown), nullptr);
}

}  // namespace
}  // namespace tavora::studio
