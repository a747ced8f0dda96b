"""The ground of the island: lawn, sand, paths, cliff and rocks."""

import math
import random

from .palette import (BROAD, DARK_ROCK, GRASS, MEADOW, PALE_ROCK, PATH, ROCK, SAND, WET_SAND)
from .shapes import Shape, convex, flat, grid_faces, merged, smoothed, tinted
from .vectors import add, mul, smooth, unit

CENTRE = (2.6, -8.0)            # x and z of the island
TERRACE = (-2.05, 0.5, 1.28)    # x and z from there, and height: the cottage stands on it
CLIFF_MIDDLE = math.radians(118)
SEGMENTS = 120


# --- the lie of the land: angles run from z towards x ------------------------------

def shore(angle):
    """Distance of the shore from the centre."""
    ellipse = 1 / math.hypot(math.sin(angle) / 6.6, math.cos(angle) / 4.6)
    return ellipse * (1 + 0.05 * math.sin(3 * angle + 0.6) + 0.025 * math.sin(7 * angle + 2.0))


def steepness(angle):
    """1 where a cliff ends the island, 0 where a beach does."""
    return smooth(-0.02, 0.22, math.cos(angle - CLIFF_MIDDLE))


def beach(angle):
    """1 where the grass ends in sand; gone before the cliff begins."""
    return smooth(0.0, -0.12, math.cos(angle - CLIFF_MIDDLE))


def ground(x, z):
    """Height of the island at a place."""
    x, z = x - CENTRE[0], z - CENTRE[1]
    angle = math.atan2(x, z)
    share = math.hypot(x, z) / shore(angle)
    cliff = steepness(angle)
    rim = 1.15 * cliff
    rise = max(0.0, 1 - share ** 1.5) ** 1.5
    knoll = 0.55 * math.exp(-((x - 1.7) ** 2 + (z + 0.8) ** 2) / 2.6)
    height = rim + (1.75 - rim) * rise + 0.4 * (1 - share) * (1 - cliff) + knoll
    terrace = 0.85 * smooth(2.3, 1.0, math.hypot(x - TERRACE[0], z - TERRACE[1]))
    dunes = 0.05 * math.sin(1.7 * x + 0.5) * math.cos(1.5 * z) * smooth(1.0, 0.7, share)
    return height + (TERRACE[2] - height) * terrace + dunes


def slope(x, z):
    e = 0.03
    return unit((ground(x - e, z) - ground(x + e, z), 2 * e, ground(x, z - e) - ground(x, z + e)))


def on_ground(x, z, lift=0.0):
    return (x, ground(x, z) + lift, z)


def at_shore(angle, share):
    """On the ground, at a share of the way from the centre to the shore."""
    reach = shore(angle) * share
    return on_ground(CENTRE[0] + reach * math.sin(angle), CENTRE[1] + reach * math.cos(angle))


def around():
    return [2 * math.pi * k / SEGMENTS for k in range(SEGMENTS + 1)]


# --- lawn and sand --------------------------------------------------------------------

def lawn_end(angle):
    """Where the grass ends: at the cliff, or above the sand."""
    waves = 0.02 * math.sin(9 * angle) + 0.012 * math.sin(17 * angle + 1)
    return 1.0 - beach(angle) * (0.2 - waves)


def sand_end(angle):
    return 1.0 + 0.1 * beach(angle)


def dry_end(angle):
    return lawn_end(angle) + 0.57 * (sand_end(angle) - lawn_end(angle)) + 0.012 * math.sin(8 * angle)


def draped(points, faces, lift=0.0):
    """Laid on the ground."""
    return Shape([(x, y + lift, z) for x, y, z in points], faces, [slope(x, z) for x, _, z in points])


def ring(inner, outer, rows):
    """The ground between two shares of the way to the shore, functions of the angle."""
    points = [at_shore(a, outer(a) + (inner(a) - outer(a)) * j / rows)
              for j in range(rows + 1) for a in around()]
    return draped(points, grid_faces(rows + 1, SEGMENTS + 1))


def skirt():
    """From the edge of the ground down under water, so that no edge shows."""
    upper = [at_shore(a, sand_end(a)) for a in around()]
    lower = [(x, -0.6, z) for x, _, z in (at_shore(a, sand_end(a) + 0.02) for a in around())]
    return smoothed([*lower, *upper], grid_faces(2, SEGMENTS + 1))


def lawn_and_sand():
    return merged(tinted(ring(lambda a: 0.0, lambda a: 0.45, 12), MEADOW),
                  tinted(ring(lambda a: 0.45, lawn_end, 16), GRASS),
                  tinted(ring(lawn_end, dry_end, 7), SAND),
                  tinted(ring(dry_end, sand_end, 4), WET_SAND),
                  tinted(skirt(), WET_SAND))


def spline(places, steps):
    """Through all places, by Catmull and Rom."""
    ends = [places[0], *places, places[-1]]
    line = []
    for p, q, r, s in zip(ends, ends[1:], ends[2:], ends[3:]):
        for k in range(steps):
            t = k / steps
            line.append(tuple(0.5 * (2 * b + (c - a) * t + (2 * a - 5 * b + 4 * c - d) * t * t +
                                     (3 * b - a - 3 * c + d) * t ** 3)
                              for a, b, c, d in zip(p, q, r, s)))
    return [*line, places[-1]]


def path(places, width):
    """Trodden along places (x, z), its edges uneven."""
    rng = random.Random(21)
    line = spline(places, 16)
    points = []
    for k, (x, z) in enumerate(line):
        ahead, behind = line[min(k + 1, len(line) - 1)], line[max(k - 1, 0)]
        across = unit((behind[1] - ahead[1], 0, ahead[0] - behind[0]))
        for side in (-1, -0.4, 0.4, 1):
            half = width / 2 * side * rng.uniform(0.9, 1.1)
            points.append(on_ground(x + across[0] * half, z + across[2] * half))
    return tinted(draped(points, grid_faces(len(line), 4), 0.03), PATH)


# --- rock -------------------------------------------------------------------------------

def colored_facets(points, faces, colors, seed):
    rng = random.Random(seed)
    return merged(*[tinted(flat([points[i] for i in face], [(0, 1, 2)]), rng.choice(colors))
                    for face in faces])


def cliff():
    """Facets from the edge of the grass down into the water."""
    rng = random.Random(5)
    columns, levels = 34, (-0.25, 0.4, 0.74, 1.0)
    first, last = math.radians(27), math.radians(209)
    points = []
    for level in levels:
        for i in range(columns + 1):
            jitter = 0 if i in (0, columns) else rng.uniform(-0.3, 0.3)
            a = first + (last - first) * (i + jitter) / columns
            points.append(on_cliff(a, level, rng))
    return colored_facets(points, grid_faces(len(levels), columns + 1), (ROCK, PALE_ROCK, ROCK), 8)


def on_cliff(angle, level, rng):
    """At a share of its height; below 0 in metres under water."""
    x, y, z = at_shore(angle, 1.0)
    if level == 1.0:
        return (x, y, z)
    out = (1 - level) * 0.55 * steepness(angle) + rng.uniform(-0.22, 0.22)
    height = level if level < 0 else y * (level + rng.uniform(-0.1, 0.1))
    away = unit((x - CENTRE[0], 0, z - CENTRE[1]))
    return add((x, height, z), mul(away, out))


def boulder(radius, seed, squash=0.75, corners=15):
    """A chiselled rock around the origin."""
    rng = random.Random(seed)
    points = []
    for k in range(corners):
        y = 1 - 2 * (k + 0.5) / corners
        a = k * math.pi * (3 - math.sqrt(5)) + rng.uniform(-0.35, 0.35)
        r = radius * rng.uniform(0.82, 1.12)
        across = r * math.sqrt(1 - y * y)
        points.append((across * math.sin(a), r * y * squash, across * math.cos(a)))
    hull = convex(points)
    return colored_facets(hull.points, hull.faces, (ROCK, PALE_ROCK, ROCK, DARK_ROCK), seed + 100)


# Of rocks by the water: x, z, height of the middle, radius, number of the shape.
ROCKS = ((9.6, -6.4, 0.1, 1.15, 3), (10.9, -7.2, -0.15, 0.8, 4), (8.7, -4.9, -0.1, 0.75, 5),
         (9.9, -4.7, -0.2, 0.5, 6), (5.0, -3.75, 0.0, 0.66, 7), (4.2, -3.5, -0.08, 0.34, 8),
         (-3.9, -9.6, 0.0, 0.8, 9), (-4.7, -9.2, -0.15, 0.5, 10), (6.2, -3.7, -0.1, 0.48, 11),
         (-6.9, -0.9, -0.1, 0.62, 12), (-6.15, -0.55, -0.15, 0.4, 13))

# From the jetty by the cottage to the tower, and to the cottage's door: places and width.
PATHS = ((((-0.9, -4.95), (-0.3, -5.6), (0.5, -6.0), (1.6, -6.1), (2.6, -6.5), (3.1, -7.2), (3.45, -7.75)), 0.5),
         (((0.5, -6.0), (0.75, -6.4), (0.95, -6.75)), 0.4))


def land(glb):
    glb.thing('Island', ('Ground', merged(lawn_and_sand(), *[path(*p) for p in PATHS]), BROAD))
    glb.thing('Cliff', ('Cliff', cliff(), BROAD))
    for number, (x, z, y, radius, seed) in enumerate(ROCKS, 1):
        glb.thing('Rock %d' % number, ('Rock', boulder(radius, seed), BROAD), translation=[x, y, z])
