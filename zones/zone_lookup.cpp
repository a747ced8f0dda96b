#include "zones/zone_lookup.h"

#include "zones/zone.h"

// Products and sums of two settings are formed in single precision and then
// widened; everything else is double. The casts below are those roundings.

namespace tavora {

float gradAlpha = 0.0f;
float gradSat = 1.0f;
float gradBright = 1.0f;

namespace {

/// A lookup on its way: whose channel, over which sample (null for a preview).
struct Lookup {
    double intensity;
    int channel;
    const HostSample* sample;

    double color(const Zone& zone) const { return static_cast<double>(zone.color[channel]); }

    /// The zone's colour over the sample's own.
    double overSample(const Zone& zone) const {
        const double base = sample->color[channel];
        return static_cast<double>(1.0f - zone.opacity) * base +
               static_cast<double>(zone.opacity * zone.color[channel]);
    }

    /// The blend zone's colour at its own position.
    double middle(const Zone& blend, const Zone& lower, const Zone& upper) const {
        return static_cast<double>(blend.opacity * upper.color[channel] +
                                   (1.0f - blend.opacity) * lower.color[channel]);
    }
};

double toSingle(double value) {
    return static_cast<double>(static_cast<float>(value));
}

/// The grey part of a zone's colour at its saturation.
double greyPart(const Zone& zone) {
    const float grey = (zone.color[0] + zone.color[1] + zone.color[2]) / 3.0f;
    return static_cast<double>(grey) * static_cast<double>(1.0f - zone.sat);
}

/// How far the intensity has come from the lower zone to the upper, smoothed.
double blendWeight(const Zone& lower, const Zone& upper, double intensity) {
    const auto start = static_cast<double>(lower.position);
    const auto end = static_cast<double>(upper.position);
    if (start > intensity) return 0.0;
    if (intensity >= end) return 1.0;
    const double u = (intensity - start) / (end - start);
    return u * u * (u * -2.0 + 3.0);
}

/// Publishes the characteristics of a single zone.
void publish(const Zone& zone) {
    gradAlpha = zone.opacity;
    gradSat = zone.sat;
    gradBright = zone.bright;
}

float towardsMean(float from, float other, double weight) {
    const double mean = weight * static_cast<double>(from + other) * 0.5;
    return static_cast<float>(static_cast<double>(from) * (1.0 - weight) + mean);
}

float fromMean(float other, float to, double weight) {
    const double mean = static_cast<double>(to + other) * 0.5 * (1.0 - weight);
    return static_cast<float>(mean + weight * static_cast<double>(to));
}

/// One colour for the whole interval.
double step(const Lookup& lookup, const Zone& zone) {
    publish(zone);
    if (lookup.sample != nullptr) return toSingle(lookup.overSample(zone));
    return static_cast<double>(zone.bright) *
           (greyPart(zone) + static_cast<double>(zone.sat * zone.color[lookup.channel]));
}

/// From an ordinary zone up to a blend zone; `upper` is the zone beyond it.
double lowerHalf(const Lookup& lookup, const Zone& lower, const Zone& blend, const Zone& upper) {
    const double s = blendWeight(lower, blend, lookup.intensity);
    gradAlpha = towardsMean(lower.opacity, upper.opacity, s);
    gradSat = towardsMean(lower.sat, upper.sat, s);
    gradBright = towardsMean(lower.bright, upper.bright, s);

    const double middle = lookup.middle(blend, lower, upper);
    if (lookup.sample != nullptr) {
        return toSingle((1.0 - s) * lookup.overSample(lower) + s * middle);
    }
    const double mixed = (1.0 - s) * lookup.color(lower) + s * middle;
    return static_cast<double>(lower.bright) *
           (greyPart(lower) + static_cast<double>(lower.sat) * mixed);
}

/// From a blend zone up to an ordinary zone; `lower` is the zone before it.
double upperHalf(const Lookup& lookup, const Zone& lower, const Zone& blend, const Zone& upper) {
    const double s = blendWeight(blend, upper, lookup.intensity);
    gradAlpha = fromMean(lower.opacity, upper.opacity, s);
    gradSat = fromMean(lower.sat, upper.sat, s);
    gradBright = fromMean(lower.bright, upper.bright, s);

    const double middle = lookup.middle(blend, lower, upper);
    const double end = lookup.sample != nullptr ? lookup.overSample(upper) : lookup.color(upper);
    return toSingle((1.0 - s) * middle + s * end);
}

double noZone() {
    gradAlpha = 0.0f;
    gradSat = 1.0f;
    gradBright = 1.0f;
    return 0.0;
}

bool blendsBetweenNeighbours(const Zone& zone) {
    return zone.blend != 0 && zone.prev != nullptr && zone.next != nullptr;
}

}  // namespace

double evalColor(ShaderInstance* instance, double intensity, int channel, int useSample,
                 const HostSample* sample) {
    Zone*& lower = instance->zoneCursor;
    lower = instance->zoneList;
    if (lower == nullptr) return noZone();
    while (lower->next != nullptr && intensity > static_cast<double>(lower->next->position)) {
        lower = lower->next;
    }

    const Lookup lookup{intensity, channel, useSample != 0 ? sample : nullptr};
    const Zone* upper = lower->next;
    if (upper == nullptr) return step(lookup, *lower);
    if (blendsBetweenNeighbours(*upper)) return lowerHalf(lookup, *lower, *upper, *upper->next);
    if (blendsBetweenNeighbours(*lower)) return upperHalf(lookup, *lower->prev, *lower, *upper);
    return step(lookup, *lower);
}

}  // namespace tavora
