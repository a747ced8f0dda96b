"""Foam, wherever land, rocks, posts and boats meet the water."""

import math
import random

from .boats import BOAT, BOAT_TURN, BOW, BUOY, STERN, keel, sheer, strake
from .land import CENTRE, ROCKS, at_shore, boulder, shore, steepness
from .motion import swell, waving
from .palette import FOAM, NAVY
from .people import JETTY_POSTS, POST, on_jetty
from .sea import is_free
from .shapes import closed_strip, facing, fan, lathe, merged, strip, tinted
from .vectors import UP, about, add, mix, smooth, unit


# --- outlines: places (x, z) on the water, convex -----------------------------------------

def convex_outline(places):
    """By Andrew's monotone chain."""
    def turn(a, b, c): return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0])
    def half(sequence):
        chain = []
        for p in sequence:
            while len(chain) > 1 and turn(chain[-2], chain[-1], p) <= 0:
                chain.pop()
            chain.append(p)
        return chain[:-1]
    places = sorted(set(places))
    return half(places) + half(reversed(places))


def waterline(shape, offset=(0, 0, 0)):
    """Where a shape that stands at `offset` cuts the water."""
    cuts = []
    for face in shape.faces:
        corners = [add(shape.points[i], offset) for i in face]
        for a, b in zip(corners, corners[1:] + corners[:1]):
            if (a[1] > 0) != (b[1] > 0):
                x, _, z = mix(a, b, a[1] / (a[1] - b[1]))
                cuts.append((round(x, 4), round(z, 4)))
    return convex_outline(cuts)


def reach(outline, centre, angle):
    """How far it is from a place inside an outline to its edge."""
    dx, dz = math.sin(angle), math.cos(angle)
    for a, b in zip(outline, outline[1:] + outline[:1]):
        ax, az, ex, ez = a[0] - centre[0], a[1] - centre[1], b[0] - a[0], b[1] - a[1]
        scale = dx * ez - dz * ex
        if abs(scale) > 1e-12:
            far, share = (ax * ez - az * ex) / scale, (ax * dz - az * dx) / scale
            if far > 0 and -1e-9 <= share <= 1 + 1e-9:
                return far
    return 0.0


# --- rings -------------------------------------------------------------------------------

def arcs(at, steps, distance, thickness, shortest, longest, rng, wash):
    """Pieces of a line about something, thin at their ends; at(k, out) gives a place. They
    go out with the wash, a little after it."""
    pieces, k = [], 0
    while k < steps:
        count = rng.randint(shortest, longest)
        def line(side):
            return [at(k + j, distance * (1 + 0.12 * wash(k + j, 1.0)) +
                       side * thickness * (1 - 0.25 * wash(k + j, 1.0)) * math.sin(math.pi * j / count))
                    for j in range(count + 1)]
        pieces.append(strip(line(1), line(-1), UP))
        k += count + rng.randint(shortest // 2 + 1, longest // 2 + 3)
    return pieces


def washed(at, sway):
    """How the water swings at a place about something, some time later."""
    def wash(k, later=0.0):
        x, _, z = at(k, 0.0)
        return sway(swell(x, z) - later)
    return wash


def ring(outline, width, seed, sway, steps=64):
    """Foam about an outline, its outer edge in scallops, and broken arcs beyond."""
    centre = (sum(p[0] for p in outline) / len(outline), sum(p[1] for p in outline) / len(outline))
    rng = random.Random(seed)
    phase, lobes = rng.uniform(0, 6), 5 + int(reach(outline, centre, 0) * 5)
    def at(k, out):
        a = 2 * math.pi * k / steps
        r = reach(outline, centre, a) + out
        return (centre[0] + r * math.sin(a), 0.012, centre[1] + r * math.cos(a))
    wash = washed(at, sway)
    def scallop(k):
        lobe = abs(math.sin(math.pi * k * lobes / steps + phase))
        return width * (0.55 + 0.45 * lobe + 0.2 * wash(k))
    edge = closed_strip([at(k, -0.06) for k in range(steps)], [at(k, scallop(k)) for k in range(steps)], UP)
    return tinted(merged(edge, *arcs(at, steps, 1.75 * width, 0.2 * width, steps // 9, steps // 5, rng, wash)), FOAM)


def water_edge(angle):
    """Share of the way to the shore where the ground meets the water."""
    if steepness(angle) > 0:
        return 1.0
    low, high = 0.9, 1.15
    for _ in range(24):
        middle = (low + high) / 2
        low, high = (middle, high) if at_shore(angle, middle)[1] > 0 else (low, middle)
    return low


def island_foam(sway):
    """A broad edge in scallops round the whole island, and a broken line farther out."""
    steps = 288
    def at(k, out):
        a = 2 * math.pi * k / steps
        x, _, z = at_shore(a, water_edge(a))
        away = unit((x - CENTRE[0], 0, z - CENTRE[1]))
        out += 0.62 * smooth(0, 1, steepness(a))  # the foot of the cliff
        return (x + away[0] * out, 0.01, z + away[2] * out)
    wash = washed(at, sway)
    def scallop(k): return 0.5 + 0.3 * abs(math.sin(math.pi * k / 6)) + 0.08 * math.sin(0.31 * k) + 0.1 * wash(k, 0.8)
    def inner(k):
        steep = steepness(2 * math.pi * k / steps)
        x, y, z = at(k, -0.7 * steep - 0.1 - 0.1 * (1 - steep) * wash(k))
        return (x, y + 0.03 * (1 - steep) * wash(k), z)  # up the sand
    edge = closed_strip([inner(k) for k in range(steps)], [at(k, scallop(k)) for k in range(steps)], UP)
    return tinted(merged(edge, *arcs(at, steps, 1.15, 0.1, 12, 26, random.Random(2), wash)), FOAM)


# --- the boat's ---------------------------------------------------------------------------

def bow_wave(side, start, spread, long, sway):
    """A line that leaves the bow and widens behind; swells run along it."""
    upper, lower = [], []
    for k in range(17):
        t = k / 16
        x = side * (0.2 + 0.6 * spread * long * t + 0.17 * math.sin(math.pi * min(1.0, 1.2 * t)))
        z, half = BOW - 0.1 - start - long * t, (0.06 + 0.02 * sway(-6 * t)) * math.sin(math.pi * t) + 0.005
        upper.append((x + half, 0.011, z))
        lower.append((x - half, 0.011, z))
    return strip(lower, upper, UP)


def wake(sway):
    """Along the hull, from the bow and behind the stern."""
    hull = ring(waterline(strake(keel, sheer, NAVY)), 0.26, 77, sway)
    waves = [bow_wave(side, *wave, sway) for side in (-1, 1) for wave in ((0.1, 0.34, 3.6), (0.5, 0.55, 3.0))]
    rng = random.Random(6)
    circle = [2 * math.pi * j / 20 for j in range(20)]
    for k in range(7):
        x, z = rng.uniform(-0.2, 0.2), STERN - 0.25 - 0.42 * k
        half = (0.5 + 0.1 * k) * rng.uniform(0.5, 0.9) * (1 + 0.15 * sway(-1.2 * k))
        depth = 0.07 * (1 + 0.25 * sway(-1.2 * k))
        waves.append(fan([(x + half * math.sin(a), 0.011, z + depth * math.cos(a)) for a in circle], UP))
    return merged(hull, tinted(facing(merged(*waves), UP), FOAM))


def foam(glb):
    def foam_of(outline, width, seed, steps=64):
        return waving(lambda sway: ring(outline, width, seed, sway, steps))
    glb.waving('Island Foam', ('Foam', waving(island_foam)))
    for number, (x, z, y, radius, seed) in enumerate(ROCKS, 1):
        outline = waterline(boulder(radius, seed), (x, y, z))
        glb.waving('Rock %d Foam' % number, ('Foam', foam_of(outline, 0.36, seed)))
    places = [on_jetty(z, side * 0.5, 0) for z in JETTY_POSTS for side in (-1, 1)]
    posts = [(waterline(POST, place), 0.17, 40 + k) for k, place in enumerate(places)
             if is_free(place[0], place[2], 1.04)]
    glb.waving('Jetty Foam', ('Foam', waving(lambda sway: merged(*[ring(*post, sway, 36) for post in posts]))))
    floating = lathe([(0.46, -0.2), (0.46, 0.2)], 32)
    glb.waving('Buoy Foam', ('Foam', foam_of(waterline(floating, BUOY), 0.34, 91)))
    glb.waving('Boat Foam', ('Foam', waving(wake)), translation=BOAT, rotation=about(UP, BOAT_TURN))
