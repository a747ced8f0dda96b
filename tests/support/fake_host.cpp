#include "tests/support/fake_host.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

#include "plugin/services.h"
#include "zones/zone_list.h"

namespace tavora::testing {
namespace {

FakeHost* host = nullptr;

FakeLight& lightOf(HostItemId id) {
    return *reinterpret_cast<FakeLight*>(id);
}
HostItemId idAt(std::size_t index) {
    return index < host->lights.size() ? reinterpret_cast<HostItemId>(&host->lights[index])
                                       : nullptr;
}
void answer(const Vec& value, double* out) {
    std::copy(value.begin(), value.end(), out);
}

const HostItemInfo itemInfo = {[](int type, HostItemId parent) {
                                   return type == HOST_ITEM_LIGHT && parent == nullptr ? idAt(0)
                                                                                       : nullptr;
                               },
                               [](HostItemId item) {
                                   for (std::size_t i = 0; i < host->lights.size(); ++i) {
                                       if (idAt(i) == item) return idAt(i + 1);
                                   }
                                   return HostItemId{};
                               },
                               [](HostItemId item) { return lightOf(item).name.c_str(); }};

const HostLightInfo lightInfo = {[](double seconds, double* color) {
                                     host->queryTimes.push_back(seconds);
                                     answer(host->ambient, color);
                                 },
                                 [](HostItemId light) { return lightOf(light).flags; },
                                 [](HostItemId light, double seconds, double* color) {
                                     host->queryTimes.push_back(seconds);
                                     answer(lightOf(light).color, color);
                                 }};

void showNothing(const char*, const char*) {}
const HostMessages messages = {
    showNothing,
    [](const char* line1, const char* line2) {
        host->errors.push_back(std::string(line1) + (line2 ? std::string(" / ") + line2 : ""));
    },
    showNothing};

const HostMultithreading multithreading = {[]() {
                                               static std::uintptr_t last = 0;
                                               if (!host->mutexesWork) return HostMutexId{};
                                               ++host->liveMutexes;
                                               return identity<HostMutexId>(++last);
                                           },
                                           [](HostMutexId) { --host->liveMutexes; },
                                           [](HostMutexId, int number) {
                                               host->lockLog += number == 0 ? '(' : '?';
                                               return 1;
                                           },
                                           [](HostMutexId, int number) {
                                               host->lockLog += number == 0 ? ')' : '?';
                                               return 1;
                                           }};

// A texture is the entry of its channel.
using Channel = std::pair<const std::string, double>;

const HostSurfaceFunctions surfaceFunctions = {[](HostSurfaceId surface, const char* channel) {
    host->textureSurface = surface;
    auto found = host->channelAlpha.find(channel);
    return found == host->channelAlpha.end() ? nullptr : reinterpret_cast<HostTextureId>(&*found);
}};

const HostTextureFunctions textureFunctions = {
    [](HostTextureId texture) { return reinterpret_cast<HostTextureLayerId>(texture); },
    [](HostTextureLayerId, int parameter, void* value) {
        ++host->layerQueries;
        if (parameter != HOST_LAYER_SCALE) return 0;
        answer(layerScale, static_cast<double*>(value));
        return 1;
    },
    [](HostTextureId texture, const HostTexturePoint* point, double*) {
        host->texturePoint = *point;
        return reinterpret_cast<Channel*>(texture)->second;
    }};

const char* noDirectory(const char*) {
    return nullptr;
}
const HostFileIo fileIo = {};
void noUpdate(const char*, HostInstance) {}

int illuminate(HostItemId id, const double*, double* direction, double* color) {
    host->asked.push_back(id);
    host->lockLog += 'i';
    answer(lightOf(id).direction, direction);
    answer(lightOf(id).arriving, color);
    return lightOf(id).reaches ? 1 : 0;
}

double traceAndShade(const double* from, const double* along, HostSample* hit) {
    ++host->traces;
    host->lockLog += 't';
    return host->onTrace ? host->onTrace(from, along, hit) : -1.0;
}

template <class Function>
void* address(Function* function) {
    return reinterpret_cast<void*>(function);
}

}  // namespace

FakeHost::FakeHost() {
    host = this;
    acquireServices(lookup);
    lookedUp.clear();
}

FakeHost::~FakeHost() {
    acquireServices([](const char*, int) -> void* { return nullptr; });
    host = nullptr;
}

HostItemId FakeHost::add(FakeLight light) {
    lights.push_back(std::move(light));
    return idAt(lights.size() - 1);
}

void* FakeHost::lookup(const char* serviceName, int useMode) {
    static const std::map<std::string, void*> services = {
        {"MultiThreading Utilities 2", const_cast<HostMultithreading*>(&multithreading)},
        {"LW Item Info 5", const_cast<HostItemInfo*>(&itemInfo)},
        {"LW Light Info 5", const_cast<HostLightInfo*>(&lightInfo)},
        {"Info Messages 2", const_cast<HostMessages*>(&messages)},
        {"Directory Info", address(noDirectory)},
        {"File IO 2", const_cast<HostFileIo*>(&fileIo)},
        {"Instance Update", address(noUpdate)},
        {"Surface Functions 4", const_cast<HostSurfaceFunctions*>(&surfaceFunctions)},
        {"Texture Functions 3", const_cast<HostTextureFunctions*>(&textureFunctions)}};
    host->lookedUp.emplace_back(serviceName);
    const auto found = services.find(serviceName);
    const bool offered = useMode == 0 && host->missingServices.count(serviceName) == 0;
    return offered && found != services.end() ? found->second : nullptr;
}

Record newRecord(HostSurfaceId context) {
    HostError error = nullptr;
    return Record(static_cast<ShaderInstance*>(Create(nullptr, context, &error)));
}

void chooseLights(ShaderInstance& record, const std::vector<std::string>& names) {
    LightListBuilder builder;
    for (const std::string& name : names)
        builder.append(name.c_str());
    freeLights(record.lightList);
    record.lightList = builder.take();
}

std::vector<Zone> zonesOf(const ShaderInstance& record) {
    std::vector<Zone> zones;
    const Zone* previous = nullptr;
    for (const Zone* zone = record.zoneList; zone != nullptr; zone = zone->next) {
        EXPECT_EQ(zone->prev, previous);
        previous = zone;
        zones.push_back(*zone);
    }
    return zones;
}

std::vector<std::string> lightsOf(const ShaderInstance& record) {
    std::vector<std::string> names;
    for (const LightEntry* entry = record.lightList; entry != nullptr; entry = entry->next) {
        names.emplace_back(entry->name);
    }
    return names;
}

void replaceZones(ShaderInstance& record, const std::vector<Zone>& zones) {
    ZoneListBuilder builder;
    for (const Zone& zone : zones)
        builder.append(zone);
    freeZones(record.zoneList);
    record.zoneList = record.zoneCursor = record.selectedZone = builder.take();
}

Zone greyZone(float position, float grey) {
    Zone zone;
    zone.position = position;
    std::fill(std::begin(zone.color), std::end(zone.color), grey);
    return zone;
}

HostSample upwardSample(Vec color) {
    HostSample sample{};
    answer({0, 1, 0}, sample.worldNormal);
    answer({0, 5, 0}, sample.raySource);
    answer(color, sample.color);
    sample.cosine = 1.0;
    sample.diffuse = 1.0;
    sample.illuminate = illuminate;
    sample.traceAndShade = traceAndShade;
    return sample;
}

Vec colorOf(const HostSample& sample) {
    return {sample.color[0], sample.color[1], sample.color[2]};
}

}  // namespace tavora::testing
