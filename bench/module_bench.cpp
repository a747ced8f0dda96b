// How long the module takes for one lookup and for one sample, beside calls
// through the same pointers that do nothing.

#include <benchmark/benchmark.h>
#include <cstring>

#include "host/handler.h"
#include "plugin/instance_creation.h"
#include "plugin/record/instance_life.h"
#include "plugin/record/list_builder.h"
#include "plugin/record/services.h"
#include "plugin/record/shader_instance.h"
#include "shading/evaluate.h"
#include "shading/render_pass.h"
#include "zones/zone_list.h"
#include "zones/zone_lookup.h"

namespace {

using namespace tavora;

// A host that costs as little as a host can. Its lights are places in an array,
// all above the sample, all named alike.
char lights[8];
std::int64_t lightCount = 1;

HostItemId light(const char* place) {
    return place < lights + lightCount ? reinterpret_cast<HostItemId>(const_cast<char*>(place))
                                       : nullptr;
}

const HostItemInfo itemInfo = {
    [](int, HostItemId) { return light(lights); },
    [](HostItemId item) { return light(reinterpret_cast<const char*>(item) + 1); },
    [](HostItemId) { return "Key"; }};

const HostLightInfo lightInfo = {
    [](double, double* color) { color[0] = color[1] = color[2] = 0.25; },
    [](HostItemId) { return 0; },
    [](HostItemId, double, double* color) { color[0] = color[1] = color[2] = 1.0; }};

const HostMultithreading mutexes = {[] { return reinterpret_cast<HostMutexId>(lights); },
                                    [](HostMutexId) {}, [](HostMutexId, int) { return 1; },
                                    [](HostMutexId, int) { return 1; }};

void* lookup(const char* name, int) {
    const auto is = [name](const char* other) { return std::strcmp(name, other) == 0; };
    if (is(HOST_ITEM_INFO_SERVICE)) return const_cast<HostItemInfo*>(&itemInfo);
    if (is(HOST_LIGHT_INFO_SERVICE)) return const_cast<HostLightInfo*>(&lightInfo);
    if (is(HOST_MULTITHREADING_SERVICE)) return const_cast<HostMultithreading*>(&mutexes);
    return nullptr;
}

int illuminate(HostItemId, const double*, double* direction, double* color) {
    direction[0] = direction[2] = 0.0;
    direction[1] = -0.25;
    color[0] = color[1] = color[2] = 0.5;
    return 1;
}

void evaluateNothing(HostInstance, HostSample*) {}

/// Asks the host what the default look asks it, and makes nothing of it.
void askTheHost(HostInstance, HostSample* sample) {
    double direction[3];
    double color[3];
    mtutil->lock(mtid, 0);
    lightinfo->ambient(0, color);
    HostItemId light = iteminfo->first(HOST_ITEM_LIGHT, nullptr);
    for (; light != nullptr; light = iteminfo->next(light))
        sample->illuminate(light, sample->worldPosition, direction, color);
    mtutil->unlock(mtid, 0);
}

HostSample sampleFacingUp() {
    HostSample sample{};
    sample.worldNormal[1] = 1.0;
    sample.raySource[1] = 5.0;
    sample.color[0] = sample.color[1] = sample.color[2] = 0.5;
    sample.cosine = sample.diffuse = 1.0;
    sample.illuminate = illuminate;
    return sample;
}

/// A record in a running pass, with a blend zone.
class Record {
  public:
    Record() {
        acquireServices(lookup);
        HostError error = nullptr;
        record_ = static_cast<ShaderInstance*>(Create(nullptr, nullptr, &error));
        addZone(record_, 0.625, 1);
        Init(record_, 0);
    }
    ~Record() {
        Cleanup(record_);
        Destroy(record_);
    }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;
    ShaderInstance* operator->() const { return record_; }
    ShaderInstance* get() const { return record_; }

  private:
    ShaderInstance* record_;
};

void shadeSamples(benchmark::State& state, ShaderInstance* record,
                  void (*evaluate)(HostInstance, HostSample*)) {
    benchmark::DoNotOptimize(evaluate);
    const HostSample fresh = sampleFacingUp();
    HostSample sample = fresh;
    for ([[maybe_unused]] auto _ : state) {
        // As a host does between samples: only what the last call changed.
        std::memcpy(sample.color, fresh.color, sizeof sample.color);
        sample.luminosity = fresh.luminosity;
        sample.diffuse = fresh.diffuse;
        evaluate(record, &sample);
        benchmark::DoNotOptimize(sample);
    }
}

void emptyCallback(benchmark::State& state) {
    const Record record;
    shadeSamples(state, record.get(), evaluateNothing);
}
BENCHMARK(emptyCallback);

void callbacksAlone(benchmark::State& state) {
    const Record record;
    lightCount = state.range(0);
    shadeSamples(state, record.get(), askTheHost);
}
BENCHMARK(callbacksAlone)->ArgName("lights")->Arg(1)->Arg(3);

void evaluateZones(benchmark::State& state) {
    const Record record;
    lightCount = state.range(0);
    shadeSamples(state, record.get(), Evaluate);
}
BENCHMARK(evaluateZones)->ArgName("lights")->Arg(1)->Arg(3);

void evaluateAllOverlays(benchmark::State& state) {
    const Record record;
    lightCount = state.range(0);
    record->slopeEnable = record->edgeEnable = record->highlightEnable = 1;
    ListBuilder<LightEntry> chosen;
    chosen.append(lightNamed("Key"));
    record->lightList = chosen.take();
    shadeSamples(state, record.get(), Evaluate);
}
BENCHMARK(evaluateAllOverlays)->ArgName("lights")->Arg(1)->Arg(3);

/// The intensity in percent picks a step (30) or the blend (65).
void lookUpColor(benchmark::State& state) {
    const Record record;
    const HostSample sample = sampleFacingUp();
    double intensity = static_cast<double>(state.range(0)) / 100.0;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(intensity);
        benchmark::DoNotOptimize(evalColor(record.get(), intensity, 1, 1, &sample));
    }
}
BENCHMARK(lookUpColor)->ArgName("percent")->Arg(30)->Arg(65);

}  // namespace

BENCHMARK_MAIN();
