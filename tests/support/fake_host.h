#pragma once

#include <deque>
#include <functional>
#include <map>
#include <set>

#include "host/sample.h"
#include "host/texture_point.h"
#include "tests/support/records.h"

namespace tavora::testing {

struct FakeLight {
    std::string name = "Key";
    Vec arriving = {1, 1, 1};    ///< what the illumination callback answers
    Vec direction = {0, -1, 0};  ///< likewise: straight down
    bool reaches = true;
    Vec color = {1, 1, 1};  ///< what the light service answers
    int flags = 0;
};

/// A host whose answers a test sets and whose calls it reads. Serves the
/// module's service globals while it lives.
struct FakeHost {
    FakeHost();
    ~FakeHost();
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;
    /// The host's lookup for the module's activations.
    static void* lookup(const char* serviceName, int useMode);

    std::deque<FakeLight> lights;
    Vec ambient = {0, 0, 0};
    std::map<std::string, double> channelAlpha;  ///< channels that have a texture
    std::function<double(const double* from, const double* along, HostSample* hit)> onTrace;
    bool mutexesWork = true;
    std::set<std::string> missingServices;
    std::map<std::string, void*> moreServices;  ///< by name, beside its own
    std::string settingsFolder;                 ///< empty: the host has none
    std::map<std::string, Block> files;         ///< by path
    bool filesCanBeWritten = true;

    Names lookedUp;
    Names errors, warnings;             ///< both lines, with " / " between
    std::vector<HostInstance> updates;  ///< records that the module said it changed
    int openFiles = 0;
    std::vector<double> queryTimes{};  ///< of every light query
    int namesAsked = 0;                ///< of lights
    int liveMutexes = 0;
    std::string log;  ///< '(' lock, ')' unlock, 'i' illuminate, 't' trace, 'p' layer parameter
    HostSurfaceId textureSurface{};   ///< of the last texture query
    HostTexturePoint texturePoint{};  ///< of the last texture evaluation
};

inline constexpr Vec layerScale = {2, 3, 4};

/// A surface at the origin that faces up, seen from straight above.
HostSample upwardSample(Vec color = {0.25, 0.5, 0.75});
Vec colorOf(const HostSample& sample);

}  // namespace tavora::testing
