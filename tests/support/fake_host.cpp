#include "tests/support/fake_host.h"

#include <algorithm>

#include "plugin/services.h"

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
                      [](HostItemId item) { return lightOf(item).name.c_str(); }};
HostLightInfo lightInfo = {[](double seconds, double* color) {
                               host->queryTimes.push_back(seconds);
                               answer(host->ambient, color);
                           },
                           [](HostItemId light) { return lightOf(light).flags; },
                           [](HostItemId light, double seconds, double* color) {
                               host->queryTimes.push_back(seconds);
                               answer(lightOf(light).color, color);
                           }};
HostMessages messages = {
    nullptr, [](const char* line, const char*) { host->errors.emplace_back(line); }, nullptr};
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
HostFileIo files = {};
const char* noDirectory(const char*) {
    return nullptr;
}
void noUpdate(const char*, HostInstance) {}

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
        {"Directory Info", reinterpret_cast<void*>(noDirectory)},
        {"File IO 2", &files},
        {"Instance Update", reinterpret_cast<void*>(noUpdate)},
        {"Surface Functions 4", &surfaces},
        {"Texture Functions 3", &textures}};
    host->lookedUp.emplace_back(serviceName);
    const bool offered = useMode == 0 && host->missingServices.count(serviceName) == 0;
    return offered ? services.at(serviceName) : nullptr;
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
