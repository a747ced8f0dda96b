"""The sea, its waves, and what is mirrored in it."""

import math
import random

from .land import CENTRE, shore
from .motion import Sway, swell, waving
from .picture import HORIZON, on_water
from .shapes import merged, strip, tinted
from .vectors import UP

# How far below the horizon a band begins, in shares of the picture's height, and its colour.
BANDS = ((0.0012, '#f3c69b'), (0.008, '#cfc3a4'), (0.02, '#9fbcab'), (0.04, '#74adaa'), (0.075, '#519da4'),
         (0.13, '#3a8b9a'), (0.2, '#2e7a8d'), (0.29, '#276b82'))
NEAREST = 1.1  # below the horizon: behind the picture's lower edge


def surface(sway):
    """Bands of colour; waves run along the borders."""
    columns = [i / 90 * 3.2 - 1.1 for i in range(91)]
    def border(number, depth):
        wave = 0.16 if 0 < number < len(BANDS) else 0.0
        def rise(u):
            phase = 11 * u + 2.3 * number
            return wave * (math.sin(phase) + sway(math.pi / 2 - phase)) * math.sin(4 * u + number)
        return [on_water(u, HORIZON + depth * (1 + rise(u))) for u in columns]
    borders = [border(k, depth) for k, depth in enumerate([*[depth for depth, _ in BANDS], NEAREST])]
    return merged(*[tinted(strip(near, far, UP), color)
                    for (_, color), far, near in zip(BANDS, borders, borders[1:])])


# --- waves -----------------------------------------------------------------------------

WAVE_ROWS = 15
STILL_ROWS = 2  # of them, the farthest: at the horizon one cannot see them move
FAR_COLORS, NEAR_COLORS = ('#fbdcb4', '#f8c9a0', '#7fb6b4'), ('#5fb0b4', '#4a9fae', '#8fd0c4')


def crest(u, v, width, height, color, bend=0.25, lift=0.006):
    """A lens of light on the water, given by its place and size in the picture."""
    ts = [k / 6 - 1 for k in range(13)]
    def line(side):
        return [on_water(u + width * t / 2, v + height * (bend * (t * t - 0.5) + side / 2 * (1 - t * t)), lift)
                for t in ts]
    return tinted(strip(line(1), line(-1), UP), color)


def is_free(x, z, margin=1.2):
    """Whether a place is off the island and its foam."""
    x, z = x - CENTRE[0], z - CENTRE[1]
    return math.hypot(x, z) > margin * shore(math.atan2(x, z))


def waves(row, rng):
    """The crests of a row, side by side; the nearer the row, the larger. Some have a small one below."""
    near = (row + 0.7) / WAVE_ROWS
    v = HORIZON + (1.03 - HORIZON) * near ** 1.7
    width = 0.016 + 0.06 * near
    colors = FAR_COLORS if row < 5 else NEAR_COLORS
    crests, u = [], -0.05 - rng.uniform(0, 0.1)
    while u < 1.05:
        size, at = rng.uniform(0.55, 1.35), v + rng.uniform(-0.012, 0.012) * near
        x, _, z = on_water(u, at)
        if is_free(x, z):
            color = rng.choice(colors)
            crests.append((u, at, width * size, 0.0022 + 0.0072 * near * size, color))
            if rng.random() < 0.4:
                crests.append((u + 0.3 * width, at + 0.006 + 0.008 * near, 0.5 * width * size,
                               0.0016 + 0.003 * near, color))
        u += width * rng.uniform(1.3, 3.0)
    return crests


def glittering(sway, crests, drift=0.12):
    """Crests that swell and shrink with the sea, and drift a part of their width."""
    def at(u, v, width, height, *rest):
        x, _, z = on_water(u, v)
        phase = swell(x, z) + 40 * u
        return crest(u + drift * width * sway(phase + 1.2), v, width * (1 + 0.13 * sway(phase)),
                     height * (1 + 0.22 * sway(phase)), *rest)
    return merged(*[at(*one) for one in crests])


# Of the tower, the sails, the hull and the buoy: middle, top and bottom of the streak, width, colours.
REFLECTIONS = ((0.672, 0.95, 1.03, 0.06, ('#f3dcae', '#e0776a')), (0.205, 0.915, 1.01, 0.075, ('#e6dcc6',)),
               (0.258, 0.912, 0.97, 0.034, ('#e27a6a',)), (0.862, 0.955, 1.02, 0.028, ('#e0685a', '#f3dcc0')))


def reflection(u, top, bottom, width, colors, seed):
    """A streak of lenses below something bright, narrower as it comes nearer; their
    colours take turns."""
    rng = random.Random(seed)
    parts, v = [], top
    while v < bottom:
        t = (v - top) / (bottom - top)
        size = width * (1 - 0.5 * t) * rng.uniform(0.7, 1.15)
        parts.append((u + rng.uniform(-0.25, 0.25) * width * (0.3 + t), v, size, 0.0075 + 0.004 * t,
                      colors[len(parts) % len(colors)], 0.1, 0.008))
        v += 0.0135 + 0.006 * t
    return parts


def sea(glb):
    glb.waving('Sea', ('Sea', waving(surface)))
    rng = random.Random(17)
    for row in range(WAVE_ROWS):
        crests = waves(row, rng)
        shape = waving(lambda sway: glittering(sway, crests)) if row >= STILL_ROWS else glittering(Sway(), crests)
        make = glb.waving if shape.moves else glb.thing
        make('Waves %d' % (row + 1), ('Ripples', shape))
    parts = [part for seed, streak in enumerate(REFLECTIONS, 50) for part in reflection(*streak, seed)]
    glb.waving('Reflections', ('Ripples', waving(lambda sway: glittering(sway, parts, 0.2))))
