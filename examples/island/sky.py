"""Sky, hills and clouds: flat cut-outs that stand far away, facing the viewer."""

import math
import random

from .motion import waving
from .palette import CREAM
from .picture import ASPECT, HORIZON, at_distance
from .shapes import fan, merged, strip, tinted

TO_VIEWER = (0, 0, 1)

# Share of the picture's height where a band ends, and its colour; from the top.
SKY_BANDS = ((0.05, '#27467a'), (0.1, '#2c4f83'), (0.15, '#33598c'), (0.2, '#3c6695'), (0.245, '#48749d'),
             (0.29, '#5885a6'), (0.335, '#6d97ae'), (0.375, '#87aab2'), (0.415, '#a3bcb3'), (0.45, '#bfc9b2'),
             (0.485, '#d9d3af'), (0.52, '#ecd8a8'), (0.555, '#f7d09c'), (0.59, '#fbc08d'), (0.70, '#fbab80'))


def between(low, high, far):
    """The shape between two lines of places in the picture."""
    return strip([at_distance(u, v, far) for u, v in low], [at_distance(u, v, far) for u, v in high], TO_VIEWER)


def backdrop():
    bands, top = [], -0.2
    columns = [i / 60 * 1.6 - 0.3 for i in range(61)]
    def border(v): return [(u, v + 0.006 * math.sin(7 * u + 40 * v)) for u in columns]
    for end, color in SKY_BANDS:
        bands.append(tinted(between(border(end), border(top), 2400), color))
        top = end
    return merged(*bands)


# --- hills ---------------------------------------------------------------------------

# Distance, colour, colour in the sun, and the peaks: share across, height in shares.
HILLS = (
    (1500, '#d8b3a4', '#e9c0a4', ((-0.1, 0.02), (0.05, 0.05), (0.16, 0.03), (0.30, 0.065), (0.44, 0.025),
                                  (0.56, 0.045), (0.70, 0.02), (0.86, 0.06), (1.1, 0.02))),
    (1000, '#a99aac', '#c9a9a6', ((-0.1, 0.07), (0.03, 0.095), (0.12, 0.05), (0.2, 0.06), (0.34, 0.012), (0.40, 0.0))),
    (900, '#9a91aa', '#bda2a4', ((0.78, 0.0), (0.86, 0.03), (0.94, 0.075), (1.0, 0.055), (1.1, 0.1))),
)
FOOT = HORIZON + 0.004


def ridge_height(peaks, u, phase):
    for (u0, h0), (u1, h1) in zip(peaks, peaks[1:]):
        if u0 <= u <= u1:
            t = (u - u0) / (u1 - u0)
            return h0 + (h1 - h0) * t + 0.004 * math.sin(95 * u + phase) * math.sin(math.pi * t)
    return 0.0


def range_of_hills(far, base, lit, peaks, phase):
    def height(u): return ridge_height(peaks, u, phase)
    us = [peaks[0][0] + (peaks[-1][0] - peaks[0][0]) * i / 160 for i in range(161)]
    parts = [tinted(between([(u, FOOT) for u in us], [(u, FOOT - height(u)) for u in us], far), base)]
    for before, peak, after in zip(peaks, peaks[1:], peaks[2:]):
        if before[1] < peak[1] > after[1]:
            parts.append(tinted(lit_flank(before[0], peak[0], height, far - 1), lit))
    return merged(*parts)


def lit_flank(start, peak, height, far):
    """The side of a peak that the sun reaches: along the ridge, back in a zigzag."""
    upper, lower = [], []
    for k in range(25):
        t = k / 24
        u = start + (peak - start) * (0.12 + 0.88 * t)
        zigzag = 0.17 * abs((k % 6) / 3 - 1) * (1 - t)
        depth = (0.18 + zigzag + 0.5 * t * (1 - t)) * height(u) * (1 - t ** 6)
        upper.append((u, FOOT - height(u)))
        lower.append((u + 0.01 * (1 - t), FOOT - height(u) + depth))
    return between(lower, upper, far)


# --- clouds ---------------------------------------------------------------------------

# Middle of the foot, width and height in shares, distance, number of the shape.
CLOUDS = ((0.12, 0.475, 0.34, 0.17, 1300, 3), (0.45, 0.42, 0.2, 0.075, 1250, 5), (0.93, 0.40, 0.26, 0.15, 1350, 8))
# Of the shade, the half-tone and the light: colour, size, move towards the sun, height of the foot.
CLOUD_LAYERS = (('#b3a6c4', 1.0, 0.0, 0.0), ('#f4c4ac', 0.86, -0.035, 0.16), ('#fff0d6', 0.66, -0.07, 0.4))


def heap(seed):
    """Discs that make a cloud: x from -1 to 1, y and radius in shares of its height."""
    rng = random.Random(seed)
    discs = []
    for k in range(11):
        t = (k + 0.5) / 11 * 2 - 1
        size = (0.55 + 0.45 * rng.random()) * (1 - 0.75 * abs(t) ** 1.4)
        discs.append((0.82 * t, max(0.14, 0.52 * size), max(0.16, 0.5 * size)))
    return discs


def cloud(u, v, width, height, far, seed):
    """Layers of one heap of discs, each smaller and moved towards the sun."""
    discs = heap(seed)
    stretch = width * ASPECT / height / 2  # of x, so that discs are round in the picture
    def top(x, size):
        return max([0.16 * size] + [cy + math.sqrt((r * size) ** 2 - ((x - cx) * stretch) ** 2)
                                    for cx, cy, r in discs if abs(x - cx) * stretch < r * size])
    layers = []
    for depth, (color, size, shift, foot) in enumerate(CLOUD_LAYERS):
        first = min(cx - r * size / stretch for cx, _, r in discs) + shift
        last = max(cx + r * size / stretch for cx, _, r in discs) + shift
        upper, lower = [], []
        for i in range(201):
            t = i / 100 - 1
            x = (first + last + t * (last - first)) / 2
            y = top(x - shift, size) * math.sqrt(1 - t ** 8)
            low = foot * (0.75 + 0.25 * math.sin(9 * x + seed)) + (0.02 * math.sin(14 * x) if depth == 0 else 0)
            upper.append((u + x * width / 2, v - y * height))
            lower.append((u + x * width / 2, v - min(low, y) * height))
        layers.append(tinted(between(lower, upper, far - depth), color))
    return merged(*layers)


# Middle, width, height and colour.
STREAKS = ((0.82, 0.075, 0.22, 0.010, '#5d83ab'), (0.88, 0.093, 0.14, 0.008, '#6f93b4'),
           (0.76, 0.099, 0.08, 0.006, '#5d83ab'), (0.20, 0.055, 0.2, 0.009, '#4f78a6'),
           (0.13, 0.07, 0.12, 0.007, '#5d83ab'), (0.42, 0.335, 0.2, 0.009, '#cfd0bc'),
           (0.36, 0.352, 0.1, 0.007, '#e6d6b6'), (0.60, 0.46, 0.16, 0.008, '#fbe3b4'),
           (0.95, 0.475, 0.2, 0.009, '#fbe3b4'), (0.30, 0.53, 0.24, 0.008, '#fde2b0'))


def streak(u, v, width, height, color):
    """A thin cloud, flatter above than below."""
    ts = [k / 12 - 1 for k in range(25)]
    half = [height / 2 * (1 - t * t) ** 0.8 for t in ts]
    return tinted(between([(u + width / 2 * t, v + 0.6 * h) for t, h in zip(ts, half)],
                          [(u + width / 2 * t, v - h) for t, h in zip(ts, half)], 1200), color)


# Place and size.
STARS = ((0.035, 0.115, 0.9), (0.11, 0.03, 0.7), (0.245, 0.085, 0.6), (0.355, 0.035, 1.1), (0.47, 0.085, 0.7),
         (0.525, 0.03, 0.8), (0.80, 0.035, 0.7), (0.955, 0.05, 1.1), (0.925, 0.145, 0.7), (0.83, 0.145, 0.5))


def star(u, v, size):
    """With four points."""
    height = 0.0065 * size
    corners = [(height if k % 2 == 0 else 0.26 * height, math.pi / 4 * k) for k in range(8)]
    outline = [(u + r * math.cos(a) / ASPECT, v - r * math.sin(a)) for r, a in corners]
    return tinted(fan([at_distance(*place, 2000) for place in outline], TO_VIEWER), CREAM)


def sky(glb):
    glb.thing('Sky', ('Sky', backdrop()))
    def stars(sway): return merged(*[star(u, v, size * (1 + 0.3 * sway(9 * u + 20 * v))) for u, v, size in STARS])
    glb.waving('Stars', ('Clouds', waving(stars)), cycles=2)
    for number, hills in enumerate(HILLS, 1):
        glb.thing('Hills %d' % number, ('Hills', range_of_hills(*hills, number)))
    for number, heap_of_discs in enumerate(CLOUDS, 1):
        glb.thing('Cloud %d' % number, ('Clouds', cloud(*heap_of_discs)))
    glb.thing('Streaks', ('Clouds', merged(*[streak(*s) for s in STREAKS])))
