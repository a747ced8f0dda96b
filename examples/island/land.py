"""The island: ground, cliff, path, rocks, and what grows there."""

import math
import random

from .palette import (AMBER, BROAD, CORAL, CREAM, DARK_ROCK, FINE, GRASS, HAIR, LEAF, MEADOW, MOSS,
                      PALE_ROCK, PATH, PINE, ROCK, SAND, WET_SAND, WHITE, WOOD)
from .shapes import (Shape, convex, flat, grid_faces, lathe, leaning, merged, placed, smoothed,
                     sphere, tinted)
from .vectors import add, mix, mul, smooth, sub, turned, unit

CENTRE = (2.6, -8.0)            # x and z of the island
TERRACE = (-2.05, 0.5, 1.28)    # x and z from there, and height: the cottage stands on it


CLIFF_MIDDLE = math.radians(118)


def shore(angle):
    """Distance of the shore from the centre; angles run from z towards x."""
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


def on_ground(x, z, lift=0.0):
    return (x, ground(x, z) + lift, z)


def at_shore(angle, share):
    reach = shore(angle) * share
    x, z = CENTRE[0] + reach * math.sin(angle), CENTRE[1] + reach * math.cos(angle)
    return (x, ground(x, z), z)


def slope(x, z):
    e = 0.03
    return unit((ground(x - e, z) - ground(x + e, z), 2 * e, ground(x, z - e) - ground(x, z + e)))


def draped(points, faces, lift):
    """Laid on the ground."""
    return Shape([(x, y + lift, z) for x, y, z in points], faces, [slope(x, z) for x, _, z in points])


def ring(inner, outer, rows, lift=0.0, segments=144):
    """The ground between two shares of the way to the shore, functions of the angle."""
    points = []
    for j in range(rows + 1):
        for i in range(segments + 1):
            a = 2 * math.pi * i / segments
            points.append(at_shore(a, outer(a) + (inner(a) - outer(a)) * j / rows))
    return draped(points, grid_faces(rows + 1, segments + 1), lift)


def lawn_end(angle):
    """Where the grass ends: at the cliff, or above the sand."""
    waves = 0.02 * math.sin(9 * angle) + 0.012 * math.sin(17 * angle + 1)
    return 1.0 - beach(angle) * (0.2 - waves)


def ground_parts():
    def sand_end(a): return 1.0 + 0.1 * beach(a)
    def wet(a): return lawn_end(a) + 0.57 * (sand_end(a) - lawn_end(a)) + 0.012 * math.sin(8 * a)
    return merged(tinted(ring(lambda a: 0.0, lambda a: 0.45, 14), MEADOW),
                  tinted(ring(lambda a: 0.45, lawn_end, 18), GRASS),
                  tinted(ring(lawn_end, wet, 8), SAND),
                  tinted(ring(wet, sand_end, 4), WET_SAND), tinted(skirt(sand_end), WET_SAND))


def skirt(start, segments=144):
    """From the edge of the ground down under water, so that no edge shows."""
    angles = [2 * math.pi * k / segments for k in range(segments + 1)]
    upper = [at_shore(a, start(a)) for a in angles]
    lower = [(x, -0.6, z) for x, _, z in (at_shore(a, start(a) + 0.02) for a in angles)]
    return smoothed([*lower, *upper], grid_faces(2, segments + 1))


def path_between(places, width):
    """A trodden path along places (x, z), its edges uneven."""
    rng = random.Random(21)
    line = spline(places, 16)
    points = []
    for k, (x, z) in enumerate(line):
        ahead, behind = line[min(k + 1, len(line) - 1)], line[max(k - 1, 0)]
        across = unit((behind[1] - ahead[1], 0, ahead[0] - behind[0]))
        for side in (-1, -0.4, 0.4, 1):
            half = width / 2 * side * rng.uniform(0.9, 1.1)
            px, pz = x + across[0] * half, z + across[2] * half
            points.append(on_ground(px, pz))
    return tinted(draped(points, grid_faces(len(line), 4), 0.03), PATH)


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


def cliff():
    """Facets from the edge of the grass down into the water."""
    rng = random.Random(5)
    columns, levels = 34, (1.0, 0.74, 0.4, -0.25)
    first, last = math.radians(27), math.radians(209)
    rows = []
    for j, level in enumerate(reversed(levels)):
        row = []
        for i in range(columns + 1):
            a = first + (last - first) * (i + (0 if i in (0, columns) else rng.uniform(-0.3, 0.3))) / columns
            top = at_shore(a, 1.0)
            out = 0 if level == 1.0 else (1 - level) * 0.55 * steepness(a) + rng.uniform(-0.22, 0.22)
            away = unit((top[0] - CENTRE[0], 0, top[2] - CENTRE[1]))
            y = top[1] * level if level > 0 else level
            y += 0 if level == 1.0 or level < 0 else rng.uniform(-0.1, 0.1) * top[1]
            row.append(add((top[0], y, top[2]), mul(away, out)))
        rows.append(row)
    points = [p for row in rows for p in row]
    return colored_facets(points, grid_faces(len(levels), columns + 1), (ROCK, PALE_ROCK, ROCK), 8)


def colored_facets(points, faces, colors, seed):
    rng = random.Random(seed)
    return merged(*[tinted(flat([points[i] for i in face], [(0, 1, 2)]), rng.choice(colors))
                    for face in faces])


def boulder(radius, seed, squash=0.75, corners=15, colors=(ROCK, PALE_ROCK, ROCK, DARK_ROCK)):
    """A chiselled rock around the origin."""
    rng = random.Random(seed)
    points = []
    for k in range(corners):
        y = 1 - 2 * (k + 0.5) / corners
        a = k * math.pi * (3 - math.sqrt(5)) + rng.uniform(-0.35, 0.35)
        r = radius * rng.uniform(0.82, 1.12)
        flatness = math.sqrt(1 - y * y)
        points.append((r * flatness * math.sin(a), r * y * squash, r * flatness * math.cos(a)))
    hull = convex(points)
    return colored_facets(hull.points, hull.faces, colors, seed + 100)


# Of rocks by the water: x, z, height of the middle, radius, number.
SHORE_ROCKS = ((9.6, -6.4, 0.1, 1.15, 3), (10.9, -7.2, -0.15, 0.8, 4), (8.7, -4.9, -0.1, 0.75, 5),
               (9.9, -4.7, -0.2, 0.5, 6), (5.0, -3.75, 0.0, 0.66, 7), (4.2, -3.5, -0.08, 0.34, 8),
               (-3.9, -9.6, 0.0, 0.8, 9), (-4.7, -9.2, -0.15, 0.5, 10), (6.2, -3.7, -0.1, 0.48, 11),
               (-6.9, -0.9, -0.1, 0.62, 12), (-6.15, -0.55, -0.15, 0.4, 13))


def tuft(x, z, size, seed):
    """A few blades of grass."""
    rng = random.Random(seed)
    blades = []
    for k in range(5):
        lean = (k - 2) * 0.22 + rng.uniform(-0.08, 0.08)
        height = size * (1.15 - 0.18 * abs(k - 2)) * rng.uniform(0.85, 1.1)
        foot = ((k - 2) * 0.16 * size, 0, 0)
        half = 0.075 * size
        tip = (foot[0] + lean * size, height, 0)
        bend = mix(foot, (foot[0], height, 0), 0.55)
        bend = (bend[0] + lean * size * 0.25, bend[1], 0)
        front = [(foot[0] - half, -0.05, 0), (foot[0] + half, -0.05, 0),
                 (bend[0] + half * 0.8, bend[1], 0.02), tip, (bend[0] - half * 0.8, bend[1], 0.02)]
        faces = [(0, 1, 2), (0, 2, 4), (4, 2, 3)]
        blades.append(Shape(front, faces, [(0, 0.6, 0.8)] * 5))
    return placed(tinted(merged(*blades), MOSS), on_ground(x, z), rng.uniform(-25, 25))


def flower(x, z, color, seed):
    """A stalk with five petals, turned to the viewer and upwards."""
    rng = random.Random(seed)
    height = rng.uniform(0.12, 0.22)
    stalk = lathe([(0.012, -0.03), (0.008, height)], 5)
    heart = placed(lens([0.034] * 8, 0.055), (0, height, 0))
    petals = placed(lens([0.056 + 0.028 * abs(math.sin(math.pi * k / 4)) ** 0.6 for k in range(20)], 0.02), (0, height, 0))
    whole = merged(tinted(stalk, MOSS), tinted(petals, color),
                   tinted(heart, AMBER if color != AMBER else CREAM))
    return placed(whole, on_ground(x, z), rng.uniform(-20, 20))


def lens(radii, depth):
    """A disc with an uneven rim, swelling to the front and to the back."""
    count = len(radii)
    rim = [(r * math.sin(2 * math.pi * k / count), r * math.cos(2 * math.pi * k / count), 0)
           for k, r in enumerate(radii)]
    sides = [(k, (k + 1) % count) for k in range(count)]
    return smoothed([*rim, (0, 0, depth), (0, 0, -depth)],
                    [(b, a, count) for a, b in sides] + [(a, b, count + 1) for a, b in sides])


def crown(puffs):
    return merged(*[placed(sphere(r), (x, y, z), 0, (1, 0.86, 1)) for x, y, z, r in puffs])


WIND_PINE = ((0.0, 1.0, 0.0, 0.5), (0.42, 1.12, 0.1, 0.4), (-0.4, 0.9, 0.12, 0.36), (0.3, 1.42, -0.05, 0.4),
             (0.75, 1.3, 0.0, 0.3), (-0.02, 0.86, 0.32, 0.34))
BUSH = ((0.0, 0.18, 0.0, 0.3), (0.28, 0.14, 0.06, 0.22), (-0.26, 0.13, 0.04, 0.24), (0.05, 0.12, 0.2, 0.2))
# Size, and x and z.
PINES = ((1.75, 2.3, -9.9), (1.3, 6.5, -9.7), (0.95, 7.45, -9.2))
BUSHES = ((1.0, 2.5, -7.2), (0.7, 2.1, -6.95), (1.1, 5.75, -7.3), (0.8, 5.2, -6.9), (1.0, -0.95, -8.1))


def plants(glb):
    trunk = leaning(lathe([(0.1, -0.2), (0.055, 1.0)], 14), (0.12, 0))
    pine = glb.mesh('Pine', ('Wood', tinted(trunk, WOOD), FINE), ('Leaves', tinted(crown(WIND_PINE), PINE), BROAD * 0.8))
    bush = glb.mesh('Bush', ('Leaves', tinted(crown(BUSH), LEAF), BROAD))
    for name, mesh, places in (('Pine', pine, PINES), ('Bush', bush, BUSHES)):
        for number, (size, x, z) in enumerate(places, 1):
            glb.node('%s %d' % (name, number), mesh=mesh, translation=on_ground(x, z), scale=[size] * 3)


def meadow(glb):
    rng = random.Random(12)
    tufts, flowers = [], []
    while len(tufts) < 26:
        angle, share = rng.uniform(-2.2, 1.9), rng.uniform(0.35, 0.95)
        if share < lawn_end(angle) - 0.03:
            x, _, z = at_shore(angle, share)
            tufts.append(tuft(x, z, rng.uniform(0.16, 0.26), len(tufts)))
    while len(flowers) < 44:
        angle, share = rng.choice((-1.1, 0.35, 0.55, 1.2)) + rng.gauss(0, 0.13), rng.uniform(0.55, 0.93)
        if share < lawn_end(angle) - 0.05:
            x, _, z = at_shore(angle, share)
            flowers.append(flower(x, z, rng.choice((WHITE, CORAL, AMBER, WHITE)), len(flowers)))
    glb.thing('Tufts', ('Blades', merged(*tufts)))
    glb.thing('Flowers', ('Flowers', merged(*flowers), HAIR))


def land(glb, path_places):
    glb.thing('Island', ('Ground', merged(ground_parts(), *[path_between(p, w) for p, w in path_places]), BROAD))
    glb.thing('Cliff', ('Cliff', cliff(), BROAD))
    for number, (x, z, y, radius, seed) in enumerate(SHORE_ROCKS, 1):
        glb.thing('Rock %d' % number, ('Rock', boulder(radius, seed), BROAD), translation=[x, y, z])
    plants(glb)
    meadow(glb)
