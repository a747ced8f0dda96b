#include "zones/zone_lookup.h"

#include "plugin/record/zone.h"

// Products and sums of two settings are formed in single precision and then
// widened; everything else is double. The casts below are those roundings.

namespace tavora {

float gradAlpha = 0.0f;
float gradSat = 1.0f;
float gradBright = 1.0f;

namespace {

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

float towardsMean(float from, float other, double weight) {
    const double mean = weight * static_cast<double>(from + other) * 0.5;
    return static_cast<float>(static_cast<double>(from) * (1.0 - weight) + mean);
}

float fromMean(float other, float to, double weight) {
    const double mean = static_cast<double>(to + other) * 0.5 * (1.0 - weight);
    return static_cast<float>(mean + weight * static_cast<double>(to));
}

/// How an interval of intensities gets its colour.
enum class Mix { none, step, lowerHalf, upperHalf };

/// Where an intensity falls.
struct Place {
    Mix mix = Mix::none;
    /// The ordinary zones around it; in a step both are the one that holds.
    const Zone* lower = nullptr;
    const Zone* upper = nullptr;
    const Zone* blend = nullptr;  ///< between the two, where there is one
    double weight = 0.0;          ///< of the interval's upper end
};

/// The zone's colour over the sample's own.
double overSample(const Zone& zone, int channel, double base) {
    return static_cast<double>(1.0f - zone.opacity) * base +
           static_cast<double>(zone.opacity * zone.color[channel]);
}

/// The blend zone's colour at its own position.
double middleColor(const Place& place, int channel) {
    const float share = place.blend->opacity;
    return static_cast<double>(share * place.upper->color[channel] +
                               (1.0f - share) * place.lower->color[channel]);
}

/// The channel over the sample's own, `base`.
double colorOver(const Place& place, int channel, double base) {
    const double s = place.weight;
    switch (place.mix) {
        case Mix::none:
            return 0.0;
        case Mix::step:
            return toSingle(overSample(*place.lower, channel, base));
        case Mix::lowerHalf:
            return toSingle((1.0 - s) * overSample(*place.lower, channel, base) +
                            s * middleColor(place, channel));
        case Mix::upperHalf:
            break;
    }
    return toSingle((1.0 - s) * middleColor(place, channel) +
                    s * overSample(*place.upper, channel, base));
}

/// The zone's brightness and saturation, applied to a value of its channel.
double finished(const Zone& zone, double saturated) {
    return static_cast<double>(zone.bright) * (greyPart(zone) + saturated);
}

/// The channel for a preview.
double previewColor(const Place& place, int channel) {
    const double s = place.weight;
    switch (place.mix) {
        case Mix::none:
            return 0.0;
        case Mix::step:
            return finished(*place.lower,
                            static_cast<double>(place.lower->sat * place.lower->color[channel]));
        case Mix::lowerHalf: {
            const double mixed = (1.0 - s) * static_cast<double>(place.lower->color[channel]) +
                                 s * middleColor(place, channel);
            return finished(*place.lower, static_cast<double>(place.lower->sat) * mixed);
        }
        case Mix::upperHalf:
            break;
    }
    return toSingle((1.0 - s) * middleColor(place, channel) +
                    s * static_cast<double>(place.upper->color[channel]));
}

bool blendsBetweenNeighbours(const Zone& zone) {
    return zone.blend != 0 && zone.prev != nullptr && zone.next != nullptr;
}

/// The zone at the lower end of the intensity's interval.
Zone* lowerEnd(Zone* zone, double intensity) {
    while (zone->next != nullptr && intensity > static_cast<double>(zone->next->position))
        zone = zone->next;
    return zone;
}

Place placeBetween(const Zone& lower, double intensity) {
    const Zone* upper = lower.next;
    if (upper != nullptr && blendsBetweenNeighbours(*upper)) {
        return {Mix::lowerHalf, &lower, upper->next, upper, blendWeight(lower, *upper, intensity)};
    }
    if (upper != nullptr && blendsBetweenNeighbours(lower)) {
        return {Mix::upperHalf, lower.prev, upper, &lower, blendWeight(lower, *upper, intensity)};
    }
    return {Mix::step, &lower, &lower, nullptr, 0.0};
}

template <class Rule>
void publishBy(Rule rule, const Place& place) {
    gradAlpha = rule(place.lower->opacity, place.upper->opacity, place.weight);
    gradSat = rule(place.lower->sat, place.upper->sat, place.weight);
    gradBright = rule(place.lower->bright, place.upper->bright, place.weight);
}

/// Leaves what evalColor() promises in the globals.
void publish(const Place& place) {
    switch (place.mix) {
        case Mix::none:
            gradAlpha = 0.0f;
            gradSat = gradBright = 1.0f;
            return;
        case Mix::step:
            publishBy([](float lower, float, double) { return lower; }, place);
            return;
        case Mix::lowerHalf:
            publishBy(towardsMean, place);
            return;
        case Mix::upperHalf:
            publishBy(fromMean, place);
            return;
    }
}

/// Finds the place, leaves the cursor on it and publishes.
Place lookUp(ShaderInstance* instance, double intensity) {
    Place place;
    instance->zoneCursor = instance->zoneList;
    if (instance->zoneList != nullptr) {
        instance->zoneCursor = lowerEnd(instance->zoneList, intensity);
        place = placeBetween(*instance->zoneCursor, intensity);
    }
    publish(place);
    return place;
}

}  // namespace

double evalColor(ShaderInstance* instance, double intensity, int channel, int useSample,
                 const HostSample* sample) {
    const Place place = lookUp(instance, intensity);
    return useSample != 0 && sample != nullptr ? colorOver(place, channel, sample->color[channel])
                                               : previewColor(place, channel);
}

void evalColors(ShaderInstance* instance, double intensity, const HostSample& sample,
                double color[3]) {
    const Place place = lookUp(instance, intensity);
    for (int i = 0; i < 3; ++i)
        color[i] = colorOver(place, i, sample.color[i]);
}

}  // namespace tavora
