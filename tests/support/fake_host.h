#pragma once

#include <array>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/sample.h"
#include "host/texture_point.h"
#include "plugin/instance_life.h"
#include "plugin/shader_instance.h"
#include "zones/zone.h"

namespace tavora::testing {

using Vec = std::array<double, 3>;

struct FakeLight {
    std::string name = "Key";
    Vec arriving = {1, 1, 1};    ///< what the illumination callback answers
    Vec direction = {0, -1, 0};  ///< likewise: straight down
    bool reaches = true;
    Vec color = {1, 1, 1};  ///< what the light service answers
    int flags = 0;
};

/// A host whose answers a test sets and whose calls it reads. The latest one
/// serves the module's service globals until it goes.
class FakeHost {
  public:
    FakeHost();
    ~FakeHost();
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;

    std::deque<FakeLight> lights;
    Vec ambient = {0, 0, 0};
    std::map<std::string, double> channelAlpha;  ///< channels that have a texture
    std::function<double(const double* from, const double* along, HostSample* hit)> onTrace;
    bool mutexesWork = true;
    std::set<std::string> missingServices;  ///< of lookup()

    std::vector<std::string> lookedUp;
    std::vector<std::string> errors;  ///< both lines, with " / " between
    std::vector<double> queryTimes;   ///< of every light query
    std::vector<HostItemId> asked;    ///< lights that were asked for illumination
    int traces = 0;
    int liveMutexes = 0;
    std::string lockLog;              ///< '(' lock, ')' unlock, 'i' illuminate, 't' trace
    HostSurfaceId textureSurface{};   ///< of the last texture evaluation
    HostTexturePoint texturePoint{};  ///< likewise
    int layerQueries = 0;

    HostItemId add(FakeLight light);
    /// The host's lookup for the module's activations.
    static void* lookup(const char* serviceName, int useMode);
};

inline constexpr Vec layerScale = {2, 3, 4};

struct DestroyInstance {
    void operator()(ShaderInstance* record) const { Destroy(record); }
};
using Record = std::unique_ptr<ShaderInstance, DestroyInstance>;

/// A record as the host gets it.
Record newRecord(HostSurfaceId context = nullptr);
void chooseLights(ShaderInstance& record, const std::vector<std::string>& names);

/// The record's zones in order, checked to be linked alike in both directions.
std::vector<Zone> zonesOf(const ShaderInstance& record);
std::vector<std::string> lightsOf(const ShaderInstance& record);
void replaceZones(ShaderInstance& record, const std::vector<Zone>& zones);

/// An ordinary zone of one grey.
Zone greyZone(float position, float grey);

/// A surface at the origin that faces up, seen from straight above.
HostSample upwardSample(Vec color = {0.2, 0.4, 0.6});
Vec colorOf(const HostSample& sample);

/// The bits of a value, to compare all of it, whatever they mean.
template <class Value>
std::string bytesOf(const Value& value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

/// An identity that stands for nothing.
template <class Id>
Id identity(std::uintptr_t number) {
    return reinterpret_cast<Id>(number);
}

}  // namespace tavora::testing
