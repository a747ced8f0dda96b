// A module whose one shader does what its settings say: an integer that names
// the behaviour, the flag word, four numbers. What it sees it tells through the
// message service.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>

#include "host/handler.h"
#include "host/module.h"
#include "host/services/item_info.h"
#include "host/services/messages.h"
#include "tests/render/probe.h"

namespace {

const HostMessages* messages = nullptr;
const HostItemInfo* items = nullptr;

struct Probe {
    std::int32_t behaviour = 0;
    std::int32_t flags = 0;
    double n[4] = {};
};

template <class Value>
void tell(const char* name, const Value* values, int count) {
    std::string text = name;
    for (int i = 0; i < count; ++i) {
        char number[40];
        std::snprintf(number, sizeof number, " %.17g", static_cast<double>(values[i]));
        text += number;
    }
    messages->info(text.c_str(), nullptr);
}

double idNumber(const void* id) {
    return static_cast<double>(reinterpret_cast<std::uintptr_t>(id));
}

void describe(const Probe&, HostSample& s) {
    tell("objectPosition", s.objectPosition, 3);
    tell("worldPosition", s.worldPosition, 3);
    tell("geometricNormal", s.geometricNormal, 3);
    tell("worldNormal", s.worldNormal, 3);
    tell("raySource", s.raySource, 3);
    tell("objectTransform", s.objectTransform, 9);
    tell("worldTransform", s.worldTransform, 9);
    tell("color", s.color, 3);
    const double single[] = {s.spotSize,     s.rayLength,  s.cosine,
                             s.luminosity,   s.diffuse,    s.specular,
                             s.transparency, s.bumpHeight, static_cast<double>(s.polygonNumber)};
    tell("single", single, 9);
    tell("weights", s.vertexWeights, 4);
    tell("corners", s.vertexPositions[0], 12);
    const double ids[] = {idNumber(s.objectId),     idNumber(s.polygonId),
                          idNumber(s.vertexIds[0]), idNumber(s.vertexIds[1]),
                          idNumber(s.vertexIds[2]), idNumber(s.vertexIds[3])};
    tell("ids", ids, 6);
}

void paint(HostSample& s, double red, double green, double blue) {
    s.color[0] = red;
    s.color[1] = green;
    s.color[2] = blue;
    s.luminosity = 1;
    s.diffuse = s.specular = 0;
}

void paintNumbers(const Probe& probe, HostSample& s) {
    paint(s, probe.n[0], probe.n[1], probe.n[2]);
    s.transparency = probe.n[3];
}

/// Red: light here. Green: light at a place away from here. Blue: lights that
/// changed their answer when asked twice.
void measureLight(const Probe& probe, HostSample& s) {
    double sums[3] = {};
    double away[3];
    for (int i = 0; i < 3; ++i)
        away[i] = s.worldPosition[i] + probe.n[i];
    for (HostItemId light = items->first(HOST_ITEM_LIGHT, nullptr); light != nullptr;
         light = items->next(light)) {
        double direction[3];
        double color[3] = {};
        double again[3] = {};
        const int lit = s.illuminate(light, s.worldPosition, direction, color);
        if (lit != 0) sums[0] += color[0];
        if (s.illuminate(light, away, direction, again) != 0) sums[1] += again[0];
        if (s.illuminate(light, s.worldPosition, direction, again) != lit) sums[2] += 1;
        if (lit != 0 && again[0] != color[0]) sums[2] += 1;
    }
    paint(s, sums[0], sums[1], sums[2]);
}

/// Traces the viewing ray onward, or a ray along the other numbers into its own record, as
/// often as the first says, and tells what is there and which object this is; a little
/// greener than what is there, red where nothing is.
void passOn(const Probe& probe, HostSample& s) {
    const bool turns = probe.n[1] != 0 || probe.n[2] != 0 || probe.n[3] != 0;
    double direction[3];
    for (int i = 0; i < 3; ++i) {
        const double onward = (s.worldPosition[i] - s.raySource[i]) / s.rayLength;
        direction[i] = turns ? probe.n[i + 1] : onward;
    }
    const double own = idNumber(s.objectId);
    HostSample other;
    HostSample& hit = turns ? s : other;
    double distance = -1;
    for (int i = 0; i < static_cast<int>(probe.n[0]); ++i)
        distance = s.traceAndShade(s.worldPosition, direction, &hit);
    if (distance < 0) return paint(s, 1, 0, 0);
    const double found[] = {distance,         hit.color[0],  hit.color[1],           hit.color[2],
                            hit.raySource[2], hit.rayLength, idNumber(hit.objectId), own};
    tell("hit", found, 8);
    paint(s, hit.color[0], hit.color[1] + 0.05, hit.color[2]);
}

void evaluate(HostInstance instance, HostSample* sample) {
    const Probe& probe = *static_cast<Probe*>(instance);
    constexpr void (*kWays[])(const Probe&, HostSample&) = {paintNumbers, describe, measureLight,
                                                            passOn};
    if (probe.behaviour <= kPassOn) kWays[probe.behaviour](probe, *sample);
}

HostInstance create(void*, HostSurfaceId, HostError*) {
    return new Probe;
}

void destroy(HostInstance instance) {
    delete static_cast<Probe*>(instance);
}

HostError load(HostInstance instance, const HostLoadState* state) {
    auto& probe = *static_cast<Probe*>(instance);
    state->readInt(state->data, &probe.behaviour, 1);
    state->readInt(state->data, &probe.flags, 1);
    float numbers[4] = {};
    state->readFloat(state->data, numbers, 4);
    std::copy_n(numbers, 4, probe.n);
    if (probe.behaviour == kRefuse) return "these settings are refused";
    if (probe.behaviour == kGreet) tell("loaded", &probe.flags, 1);
    return nullptr;
}

HostError save(HostInstance, const HostSaveState*) {
    return nullptr;
}

bool greets(HostInstance instance) {
    return static_cast<Probe*>(instance)->behaviour == kGreet;
}

HostError init(HostInstance instance, int mode) {
    if (greets(instance)) tell("init", &mode, 1);
    return nullptr;
}

HostError newTime(HostInstance instance, int frame, double seconds) {
    const double time[] = {static_cast<double>(frame), seconds};
    if (greets(instance)) tell("newTime", time, 2);
    return nullptr;
}

void cleanup(HostInstance instance) {
    const int none = 0;
    if (greets(instance)) tell("cleanup", &none, 1);
}

unsigned flags(HostInstance instance) {
    return static_cast<unsigned>(static_cast<Probe*>(instance)->flags);
}

int activate(int, HostLookup* lookup, void* record, void*) {
    messages = static_cast<const HostMessages*>(lookup(HOST_MESSAGES_SERVICE, HOST_USE_TRANSIENT));
    items = static_cast<const HostItemInfo*>(lookup(HOST_ITEM_INFO_SERVICE, HOST_USE_TRANSIENT));
    auto& handler = *static_cast<HostShaderHandler*>(record);
    *handler.instance = {nullptr, create, destroy, nullptr, load, save, nullptr};
    *handler.render = {init, cleanup, newTime};
    handler.evaluate = evaluate;
    handler.flags = flags;
    return HOST_ACTIVATION_OK;
}

void* startup() {
    return &messages;
}

void shutdown(void*) {}

const HostServerRecord servers[] = {
    {HOST_SHADER_HANDLER_CLASS, "PROBE", activate, nullptr},
    {nullptr, nullptr, nullptr, nullptr},
};

}  // namespace

extern "C" [[gnu::visibility("default")]] const HostModuleDescriptor _mod_descrip;
const HostModuleDescriptor _mod_descrip = {
    HOST_MODULE_SYNC, HOST_MODULE_VERSION, HOST_MODULE_MACHINE, startup, shutdown, servers};
