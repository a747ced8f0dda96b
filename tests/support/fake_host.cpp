#include "tests/support/fake_host.h"

#include <algorithm>

#include "plugin/record/services.h"

namespace tavora::testing {
namespace {

FakeHost* host = nullptr;

FakeLight& lightOf(HostItemId id) {
    return *reinterpret_cast<FakeLight*>(id);
}
HostItemId idAt(std::size_t i) {
    return i < host->lights.size() ? reinterpret_cast<HostItemId>(&host->lights[i]) : nullptr;
}
void answer(const Vec& value, double* out) {
    std::copy(value.begin(), value.end(), out);
}

HostItemInfo items = {[](int type, HostItemId parent) {
                          return type == HOST_ITEM_LIGHT && parent == nullptr ? idAt(0) : nullptr;
                      },
                      [](HostItemId item) {
                          std::size_t i = 0;
                          while (idAt(i) != item)
                              ++i;
                          return idAt(i + 1);
                      },
                      [](HostItemId item) {
                          ++host->namesAsked;
                          return lightOf(item).name.c_str();
                      }};
HostLightInfo lightInfo = {[](double seconds, double* color) {
                               host->queryTimes.push_back(seconds);
                               answer(host->ambient, color);
                           },
                           [](HostItemId light) { return lightOf(light).flags; },
                           [](HostItemId light, double seconds, double* color) {
                               host->queryTimes.push_back(seconds);
                               answer(lightOf(light).color, color);
                           }};
std::string joined(const char* line1, const char* line2) {
    return line2 == nullptr ? line1 : std::string(line1) + " / " + line2;
}
HostMessages messages = {
    nullptr,
    [](const char* line1, const char* line2) { host->errors.push_back(joined(line1, line2)); },
    [](const char* line1, const char* line2) { host->warnings.push_back(joined(line1, line2)); }};
int note(char event) {
    host->log += event;
    return 1;
}
HostMultithreading mutexes = {
    [] {
        static std::uintptr_t last = 0;
        host->liveMutexes += host->mutexesWork ? 1 : 0;
        return host->mutexesWork ? identity<HostMutexId>(++last) : nullptr;
    },
    [](HostMutexId) { --host->liveMutexes; },
    [](HostMutexId, int number) { return note(number == 0 ? '(' : '?'); },
    [](HostMutexId, int number) { return note(number == 0 ? ')' : '?'); }};
// A texture is the entry of its channel.
HostSurfaceFunctions surfaces = {[](HostSurfaceId surface, const char* channel) {
    host->textureSurface = surface;
    const auto found = host->channelAlpha.find(channel);
    return found == host->channelAlpha.end() ? nullptr : reinterpret_cast<HostTextureId>(&*found);
}};
HostTextureFunctions textures = {
    [](HostTextureId texture) { return reinterpret_cast<HostTextureLayerId>(texture); },
    [](HostTextureLayerId, int parameter, void* value) {
        if (parameter == HOST_LAYER_SCALE) answer(layerScale, static_cast<double*>(value));
        return note('p');
    },
    [](HostTextureId texture, const HostTexturePoint* point, double*) {
        host->texturePoint = *point;
        return reinterpret_cast<std::pair<const std::string, double>*>(texture)->second;
    }};
const HostSaveState* openSave(const char* path, int ioMode) {
    if (!host->filesCanBeWritten || ioMode != HOST_IO_OBJECT) return nullptr;
    ++host->openFiles;
    host->files[path].clear();
    return new HostSaveState(savingInto(host->files[path]));
}
const HostLoadState* openLoad(const char* path, int ioMode) {
    const auto found = host->files.find(path);
    if (found == host->files.end() || ioMode != HOST_IO_OBJECT) return nullptr;
    ++host->openFiles;
    static Unread unread;
    unread = found->second;
    return new HostLoadState(loadingFrom(unread));
}
template <class State>
void closeFile(const State* state) {
    --host->openFiles;
    delete state;
}
HostFileIo fileIo = {openSave, closeFile<HostSaveState>, openLoad, closeFile<HostLoadState>};
const char* directory(const char* name) {
    const bool known = std::string(name) == "Settings" && !host->settingsFolder.empty();
    return known ? host->settingsFolder.c_str() : nullptr;
}
void update(const char* className, HostInstance instance) {
    EXPECT_STREQ(className, "ShaderHandler");
    host->updates.push_back(instance);
}

int illuminate(HostItemId id, const double*, double* direction, double* color) {
    note('i');
    answer(lightOf(id).direction, direction);
    answer(lightOf(id).arriving, color);
    return lightOf(id).reaches ? 1 : 0;
}
double traceAndShade(const double* from, const double* along, HostSample* hit) {
    note('t');
    return host->onTrace ? host->onTrace(from, along, hit) : -1.0;
}

}  // namespace

FakeHost::FakeHost() {
    host = this;
    acquireServices(lookup);
    lookedUp.clear();
}

FakeHost::~FakeHost() {
    acquireServices([](const char*, int) -> void* { return nullptr; });
}

void* FakeHost::lookup(const char* serviceName, int useMode) {
    static const std::map<std::string, void*> services = {
        {"MultiThreading Utilities 2", &mutexes},
        {"LW Item Info 5", &items},
        {"LW Light Info 5", &lightInfo},
        {"Info Messages 2", &messages},
        {"Directory Info", reinterpret_cast<void*>(directory)},
        {"File IO 2", &fileIo},
        {"Instance Update", reinterpret_cast<void*>(update)},
        {"Surface Functions 4", &surfaces},
        {"Texture Functions 3", &textures}};
    host->lookedUp.emplace_back(serviceName);
    if (useMode != 0 || host->missingServices.count(serviceName) != 0) return nullptr;
    const auto more = host->moreServices.find(serviceName);
    return more != host->moreServices.end() ? more->second : services.at(serviceName);
}

HostSample upwardSample(Vec color) {
    HostSample sample{};
    sample.worldNormal[1] = 1.0;
    sample.raySource[1] = 5.0;
    answer(color, sample.color);
    sample.cosine = sample.diffuse = 1.0;
    sample.illuminate = illuminate;
    sample.traceAndShade = traceAndShade;
    return sample;
}

Vec colorOf(const HostSample& sample) {
    return {sample.color[0], sample.color[1], sample.color[2]};
}

}  // namespace tavora::testing
