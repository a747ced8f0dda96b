// A module whose one shader does what its settings say: an integer that names
// the behaviour, the flag word, four numbers. What it sees it tells through the
// message service.

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>

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
    float numbers[4] = {};
};

void tell(const char* name, const double* values, int count) {
    char text[400];
    int length = std::snprintf(text, sizeof text, "%s", name);
    for (int i = 0; i < count; ++i) {
        length += std::snprintf(text + length, sizeof text - static_cast<std::size_t>(length),
                                " %.17g", values[i]);
    }
    messages->info(text, nullptr);
}

void tellId(const char* name, const void* id) {
    char text[80];
    std::snprintf(text, sizeof text, "%s %zu", name, reinterpret_cast<std::size_t>(id));
    messages->info(text, nullptr);
}

void describe(const HostSample& s) {
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
    const double weights[] = {
        static_cast<double>(s.vertexWeights[0]), static_cast<double>(s.vertexWeights[1]),
        static_cast<double>(s.vertexWeights[2]), static_cast<double>(s.vertexWeights[3])};
    tell("weights", weights, 4);
    for (const auto& corner : s.vertexPositions) {
        const double position[] = {static_cast<double>(corner[0]), static_cast<double>(corner[1]),
                                   static_cast<double>(corner[2])};
        tell("corner", position, 3);
    }
    tellId("object", s.objectId);
    tellId("polygon", s.polygonId);
    for (HostPointId vertex : s.vertexIds)
        tellId("vertex", vertex);
}

void paint(HostSample& s, double red, double green, double blue) {
    s.color[0] = red;
    s.color[1] = green;
    s.color[2] = blue;
    s.luminosity = 1;
    s.diffuse = s.specular = 0;
}

/// Red: light here. Green: light at a place away from here. Blue: lights that
/// changed their answer when asked twice.
void measureLight(const Probe& probe, HostSample& s) {
    double sums[3] = {};
    const double away[3] = {s.worldPosition[0] + static_cast<double>(probe.numbers[0]),
                            s.worldPosition[1] + static_cast<double>(probe.numbers[1]),
                            s.worldPosition[2] + static_cast<double>(probe.numbers[2])};
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

double traceOn(const HostSample& s, HostSample& hit) {
    double direction[3];
    double length = 0;
    for (int i = 0; i < 3; ++i) {
        direction[i] = s.worldPosition[i] - s.raySource[i];
        length += direction[i] * direction[i];
    }
    for (double& axis : direction)
        axis /= std::sqrt(length);
    return s.traceAndShade(s.worldPosition, direction, &hit);
}

/// Traces the viewing ray onward as often as told; a little greener than what
/// is there, red where nothing is.
void passOn(const Probe& probe, HostSample& s) {
    HostSample hit;
    double distance = -1;
    for (int i = 0; i < static_cast<int>(probe.numbers[0]); ++i)
        distance = traceOn(s, hit);
    if (distance < 0) {
        paint(s, 1, 0, 0);
    } else {
        paint(s, hit.color[0], hit.color[1] + 0.05, hit.color[2]);
    }
}

/// Tells the distance of what lies along the numbers, and what it is.
void look(const Probe& probe, HostSample& s) {
    const double direction[3] = {static_cast<double>(probe.numbers[0]),
                                 static_cast<double>(probe.numbers[1]),
                                 static_cast<double>(probe.numbers[2])};
    HostSample hit;
    const double distance = s.traceAndShade(s.worldPosition, direction, &hit);
    tell("distance", &distance, 1);
    if (distance < 0) return;
    tell("hitColor", hit.color, 3);
    tell("hitSource", hit.raySource, 3);
    tell("hitLength", &hit.rayLength, 1);
    tellId("hitObject", hit.objectId);
}

void judge(const Probe& probe, HostSample& s) {
    double cosine = 0;
    for (int i = 0; i < 3; ++i)
        cosine -= s.worldNormal[i] * static_cast<double>(probe.numbers[i]);
    HostItemId light = items->first(HOST_ITEM_LIGHT, nullptr);
    double direction[3];
    double color[3];
    const bool lit = s.illuminate(light, s.worldPosition, direction, color) != 0;
    paint(s, cosine > 0 && !lit ? 1 : 0, cosine > 0 && lit ? 1 : 0, 1);
}

void scribble(HostSample& s) {
    std::memset(static_cast<void*>(&s), 0x55, sizeof s);
    paint(s, 0.25, 0.5, 0.75);
    s.transparency = 0;
}

void spoil(const Probe& probe, HostSample& s) {
    paint(s, 1, 1, 1);
    const double bad = std::numeric_limits<double>::quiet_NaN();
    if (probe.numbers[0] == 0) s.color[1] = bad;
    if (probe.numbers[0] == 1) s.luminosity = std::numeric_limits<double>::infinity();
    if (probe.numbers[0] == 2) s.transparency = bad;
    if (probe.numbers[0] == 3) s.color[0] = s.luminosity = 1e300;
}

void evaluate(HostInstance instance, HostSample* sample) {
    const Probe& probe = *static_cast<Probe*>(instance);
    const float* n = probe.numbers;
    switch (probe.behaviour) {
        case kPaint:
            paint(*sample, static_cast<double>(n[0]), static_cast<double>(n[1]),
                  static_cast<double>(n[2]));
            sample->transparency = static_cast<double>(n[3]);
            break;
        case kDescribe:
            return describe(*sample);
        case kMeasureLight:
            return measureLight(probe, *sample);
        case kPassOn:
            return passOn(probe, *sample);
        case kLook:
            return look(probe, *sample);
        case kJudge:
            return judge(probe, *sample);
        case kScribble:
            return scribble(*sample);
        case kSpoil:
            return spoil(probe, *sample);
        default:
            break;
    }
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
    state->readFloat(state->data, probe.numbers, 4);
    if (probe.behaviour == kRefuse) return "these settings are refused";
    if (probe.behaviour == kGreet) messages->info("loaded", nullptr);
    return nullptr;
}

HostError save(HostInstance, const HostSaveState*) {
    return nullptr;
}

unsigned flags(HostInstance instance) {
    return static_cast<unsigned>(static_cast<Probe*>(instance)->flags);
}

int activate(int, HostLookup* lookup, void* record, void*) {
    messages = static_cast<const HostMessages*>(lookup(HOST_MESSAGES_SERVICE, HOST_USE_TRANSIENT));
    items = static_cast<const HostItemInfo*>(lookup(HOST_ITEM_INFO_SERVICE, HOST_USE_TRANSIENT));
    auto& handler = *static_cast<HostShaderHandler*>(record);
    *handler.instance = {nullptr, create, destroy, nullptr, load, save, nullptr};
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
