"""The sea, its foam and reflections, the boat and the buoy."""

import math
import random

from .buildings import jetty_post_places
from .land import CENTRE, SHORE_ROCKS, at_shore, boulder, on_ground, shore, steepness
from .palette import (AMBER, BROAD, CORAL, CREAM, DEEP_RED, FINE, FOAM, HAIR, INK, NAVY, PALE_PLANK, PLANK, RED, RIPPLE, TEAL, WHITE, WOOD, DARK_WOOD)
from .picture import EYE, on_water
from .shapes import (Shape, box, closed_strip, flat, grid_faces, lathe, merged, placed, sheet, smoothed,
                     sphere, strip, thickened, tinted, tube)
from .sky import HORIZON
from .vectors import about_axis, add, mix, mul, sub, turned, unit

UP = (0, 1, 0)

# Share of the picture's height where a band begins, and its colour.
SEA_BANDS = ((HORIZON + 0.0012, '#f3c69b'), (HORIZON + 0.008, '#cfc3a4'), (HORIZON + 0.02, '#9fbcab'), (HORIZON + 0.04, '#74adaa'),
             (HORIZON + 0.075, '#519da4'), (HORIZON + 0.13, '#3a8b9a'), (HORIZON + 0.2, '#2e7a8d'), (HORIZON + 0.29, '#276b82'))


def sea():
    columns = [i / 90 * 1.8 - 0.4 for i in range(91)]
    def line(number, v):
        depth = v - HORIZON
        return [on_water(u, v + 0.16 * depth * math.sin(11 * u + 2.3 * number) * math.sin(4 * u + number) * (number > 0))
                for u in columns]
    borders = [line(k, v) for k, (v, _) in enumerate(SEA_BANDS)] + [[on_water(u, 1.6) for u in columns]]
    return merged(*[tinted(strip(near, far, UP), color)
                    for (_, color), far, near in zip(SEA_BANDS, borders, borders[1:])])


# --- waves -----------------------------------------------------------------------

def crest(u, v, width, height, color, bend=0.25, lift=0.006):
    """A lens of light on the water, given by its place and size in the picture."""
    count = 13
    upper, lower = [], []
    for k in range(count):
        t = k / (count - 1) * 2 - 1
        middle = v + bend * height * (t * t - 0.5)
        half = height / 2 * (1 - t * t)
        upper.append(on_water(u + width * t / 2, middle - half, lift))
        lower.append(on_water(u + width * t / 2, middle + half, lift))
    return tinted(strip(lower, upper, UP), color)


def is_free(place, margin=1.12):
    """Whether a place is off the island and its foam."""
    x, z = place[0] - CENTRE[0], place[2] - CENTRE[1]
    return math.hypot(x, z) > shore(math.atan2(x, z)) * margin


WAVE_ROWS = 15


def waves(glb):
    """Crests in rows, wider apart the nearer they are; a row is a node of its own."""
    rng = random.Random(17)
    for row in range(WAVE_ROWS):
        t = (row + 0.7) / WAVE_ROWS
        v = HORIZON + (1.03 - HORIZON) * t ** 1.7
        width = 0.016 + 0.06 * t
        u = -0.05 - rng.uniform(0, 0.1)
        crests = []
        while u < 1.05:
            size = rng.uniform(0.55, 1.35)
            at = v + rng.uniform(-0.006, 0.006) * t * 2
            place = on_water(u, at)
            if is_free(place, 1.2):
                color = wave_color(row, rng)
                crests.append(crest(u, at, width * size, 0.0022 + 0.0072 * t * size, color))
                if rng.random() < 0.4:
                    crests.append(crest(u + width * 0.3, at + 0.006 + 0.008 * t, width * size * 0.5, 0.0016 + 0.003 * t, color))
            u += width * rng.uniform(1.3, 3.0)
        glb.thing('Waves %d' % (row + 1), ('Ripples', merged(*crests)))


def wave_color(row, rng):
    far, near = ('#fbdcb4', '#f8c9a0', '#7fb6b4'), ('#5fb0b4', '#4a9fae', '#8fd0c4')
    return rng.choice(far if row < 5 else near)


def reflection(u, top, bottom, width, colors, seed):
    """A streak of lenses below something bright, breaking up as it comes nearer; their
    colours take turns."""
    rng = random.Random(seed)
    parts, v = [], top
    while v < bottom:
        t = (v - top) / (bottom - top)
        size = width * (1 - 0.5 * t) * rng.uniform(0.7, 1.15)
        parts.append(crest(u + rng.uniform(-0.25, 0.25) * width * (0.3 + t), v, size, 0.0075 + 0.004 * t,
                           colors[len(parts) % len(colors)], 0.1, 0.008))
        v += 0.0135 + 0.006 * t
    return merged(*parts)


# --- foam ---------------------------------------------------------------------------

def hull_outline(points):
    """The convex outline of points (x, z), by Andrew's monotone chain."""
    points = sorted(set(points))
    def half(sequence):
        chain = []
        for p in sequence:
            while len(chain) > 1 and turn(chain[-2], chain[-1], p) <= 0:
                chain.pop()
            chain.append(p)
        return chain[:-1]
    def turn(a, b, c): return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0])
    return half(points) + half(reversed(points))


def waterline(shape, offset=(0, 0, 0)):
    """Where a shape that stands at `offset` cuts the water, as a convex outline (x, z)."""
    cuts = []
    for face in shape.faces:
        corners = [add(shape.points[i], offset) for i in face]
        for a, b in zip(corners, corners[1:] + corners[:1]):
            if (a[1] > 0) != (b[1] > 0):
                x, _, z = mix(a, b, a[1] / (a[1] - b[1]))
                cuts.append((round(x, 4), round(z, 4)))
    return hull_outline(cuts)


def reach(outline, centre, angle):
    """How far it is from a place inside a convex outline to its edge."""
    d = (math.sin(angle), math.cos(angle))
    best = 0.0
    for a, b in zip(outline, outline[1:] + outline[:1]):
        ax, az, ex, ez = a[0] - centre[0], a[1] - centre[1], b[0] - a[0], b[1] - a[1]
        scale = d[0] * ez - d[1] * ex
        if abs(scale) > 1e-12:
            along = (ax * ez - az * ex) / scale
            share = (ax * d[1] - az * d[0]) / scale
            if along > 0 and -1e-9 <= share <= 1 + 1e-9:
                best = max(best, along)
    return best


def foam_ring(outline, width, seed, steps=72):
    """Foam about an outline, its outer edge in scallops; beyond it broken arcs."""
    centre = (sum(p[0] for p in outline) / len(outline), sum(p[1] for p in outline) / len(outline))
    rng = random.Random(seed)
    phase, lobes = rng.uniform(0, 6), 5 + int(reach(outline, centre, 0) * 5)
    def at(k, extra):
        a = 2 * math.pi * k / steps
        r = reach(outline, centre, a) + extra
        return (centre[0] + r * math.sin(a), 0.012, centre[1] + r * math.cos(a))
    def scallop(k): return 0.55 + 0.45 * abs(math.sin(math.pi * k * lobes / steps + phase))
    ring = closed_strip([at(k, -0.06) for k in range(steps)], [at(k, width * scallop(k)) for k in range(steps)], UP)
    arcs = []
    k = 0
    while k < steps:
        count = rng.randint(steps // 9, steps // 5)
        ks = range(k, k + count + 1)
        thick = [0.2 * width * math.sin(math.pi * (j - k) / count) for j in ks]
        arcs.append(strip([at(j, width * 1.75 + t) for j, t in zip(ks, thick)], [at(j, width * 1.75 - t) for j, t in zip(ks, thick)], UP))
        k += count + rng.randint(steps // 12, steps // 6)
    return tinted(merged(ring, *arcs), FOAM)


def shore_line(angle):
    """Share of the way to the shore where the ground meets the water."""
    if steepness(angle) > 0.3:
        return 1.0
    low, high = 0.9, 1.15
    for _ in range(24):
        middle = (low + high) / 2
        low, high = (middle, high) if at_shore(angle, middle)[1] > 0 else (low, middle)
    return low


def island_foam():
    """Round the whole island: a broad edge of foam, then a line farther out."""
    steps = 288
    angles = [2 * math.pi * k / steps for k in range(steps)]
    def at(a, out):
        x, _, z = at_shore(a, shore_line(a))
        away = unit((x - CENTRE[0], 0, z - CENTRE[1]))
        return (x + away[0] * out, 0.01, z + away[2] * out)
    def cliff_reach(a): return 0.62 * smooth_step(steepness(a))
    def lace(k): return 0.5 + 0.3 * abs(math.sin(k * math.pi / 6)) + 0.08 * math.sin(k * 0.31)
    inner = [at(a, -0.1) for a in angles]
    outer = [at(a, cliff_reach(a) + lace(k)) for k, a in enumerate(angles)]
    parts = [closed_strip(inner, outer, UP)]
    rng = random.Random(2)
    k = 0
    while k < steps:
        count = rng.randint(12, 26)
        ks = [(k + j) % steps for j in range(count + 1)]
        mid = [cliff_reach(angles[j]) + 1.15 + 0.1 * math.sin(j * 0.4) for j in ks]
        thick = [0.1 * math.sin(math.pi * j / count) for j in range(count + 1)]
        parts.append(strip([at(angles[j], m + t) for j, m, t in zip(ks, mid, thick)],
                           [at(angles[j], m - t) for j, m, t in zip(ks, mid, thick)], UP))
        k += count + rng.randint(5, 14)
    return tinted(merged(*parts), FOAM)


def smooth_step(x): return x * x * (3 - 2 * x)


def foam(glb):
    glb.thing('Island Foam', ('Foam', island_foam()))
    for number, (x, z, y, radius, seed) in enumerate(SHORE_ROCKS, 1):
        outline = waterline(boulder(radius, seed), (x, y, z))
        glb.thing('Rock %d Foam' % number, ('Foam', foam_ring(outline, 0.36, seed)))
    rings = []
    for k, (x, _, z) in enumerate(jetty_post_places()):
        if is_free((x, 0, z), 1.04):
            rings.append(foam_ring(waterline(lathe([(0.085, -0.5), (0.085, 0.7)], 16), (x, 0, z)), 0.17, 40 + k, 36))
    glb.thing('Jetty Foam', ('Foam', merged(*rings)))


# --- boat -------------------------------------------------------------------------------

BOW, STERN, DRAUGHT = 1.75, -1.6, 0.42


def half_breadth(t):
    """From the bow (0) to the transom (1)."""
    return 0.72 * math.sin(math.pi * (0.02 + 0.63 * t)) ** 0.85 if t > 0 else 0.0


def sheer(t): return 0.5 + 0.36 * (1 - t) ** 2.2 + 0.06 * t * t


def hull_point(t, y):
    """On the starboard side; y from the keel to the sheer."""
    u = max(0.0, (y - keel(t)) / (sheer(t) - keel(t)))
    rake = 0.32 * (1 - t) ** 6 * (y - 0.0)
    return (half_breadth(t) * (1 - (1 - min(u, 1.0)) ** 2.4), y, BOW + (STERN - BOW) * t + rake)


def strake(low, high, color):
    """Both sides and the transom between two heights, functions of t."""
    stations, rows = 30, 6
    def side(t, v):
        return hull_point(t, low(t) + (high(t) - low(t)) * v)
    starboard = sheet(side, rows, stations)
    port = Shape([(-x, y, z) for x, y, z in starboard.points], [f[::-1] for f in starboard.faces],
                 [(-x, y, z) for x, y, z in starboard.normals])
    edge = [hull_point(1, low(1) + (high(1) - low(1)) * j / (rows - 1)) for j in range(rows)]
    transom = Shape([p for x, y, z in edge for p in ((x, y, z), (-x, y, z))], grid_faces(rows, 2),
                    [(0, 0, -1)] * (2 * rows))
    return tinted(merged(starboard, port, transom), color)


def keel(t): return -DRAUGHT + 0.3 * max(0.0, 0.25 - t) / 0.25


def boat_hull():
    def water(t): return 0.09
    def lower(t): return sheer(t) - 0.13
    strakes = merged(strake(keel, water, NAVY), strake(water, lower, RED), strake(lower, sheer, CREAM))
    ts = [j / 24 for j in range(25)]
    port = [add(hull_point(t, sheer(t) - 0.05), (0, 0, 0)) for t in ts]
    deck = strip([(-x, y, z) for x, y, z in reversed(port)], [(x, y, z) for x, y, z in reversed(port)], UP)
    deck = deck._replace(faces=[f if is_up(deck.points, f) else f[::-1] for f in deck.faces])
    cabin = merged(tinted(placed(box(0.62, 0.26, 0.85), (0, 0.5, 0.05)), CREAM),
                   tinted(placed(box(0.7, 0.05, 0.95), (0, 0.76, 0.05)), RED))
    ports = [tinted(placed(box(0.64, 0.09, 0.12), (0, 0.6, z)), NAVY) for z in (-0.2, 0.05, 0.3)]
    return merged(strakes, tinted(deck, PLANK), cabin, *ports)


def is_up(points, face):
    a, b, c = (points[i] for i in face)
    return (b[2] - a[2]) * (c[0] - a[0]) - (b[0] - a[0]) * (c[2] - a[2]) > 0


def sail(tack, clew, head, belly, bands, roach=0.0):
    """A triangle that the wind fills towards `belly`; the leech curves out by `roach`.
    Bands: the share of the height where each ends, and its colour."""
    aft = unit(sub(clew, tack))
    def at(u, v):
        v = min(v, 0.985)
        out = math.sin(math.pi * v) * u * roach * (1 - v) * 2
        full = math.sin(math.pi * (0.12 + 0.76 * u)) * (1 - v) ** 0.8 * (0.35 + v) * 1.1
        return add(add(mix(mix(tack, clew, u), head, v), mul(aft, out)), mul(belly, full))
    def band(low, high, color):
        rows = 2 + round(14 * (high - low))
        return tinted(sheet(lambda u, v: at(u, low + (high - low) * v), rows, 12), color)
    lows = [0.0, *[end for end, _ in bands]]
    return thickened(merged(*[band(low, end, color) for low, (end, color) in zip(lows, bands)]), 0.03)


BOAT, BOAT_TURN = (-6.9, -6.3), 66


def boat(glb):
    tilt = about_axis((0, 0, 1), -5)
    turn = about_axis(UP, BOAT_TURN)
    root = glb.node('Boat', translation=[BOAT[0], 0, BOAT[1]], rotation=product(turn, tilt))
    mast = placed(lathe([(0.05, 0.3), (0.03, 4.15)], 12), (0, 0, 0.5))
    boom = tube([(0, 1.0, 0.5), (0.1, 0.98, -1.55)], 0.035)
    forestay = tube([(0, sheer(0) - 0.02, BOW + 0.25), (0, 3.9, 0.5)], 0.012, 6)
    glb.thing('Hull', ('Hull', boat_hull(), 0.03), ('Mast', tinted(merged(mast, boom), WOOD), HAIR),
              ('Iron', tinted(forestay, INK)), parent=root)
    main_sail = sail((0.02, 1.06, 0.44), (0.12, 1.04, -1.5), (0.0, 4.0, 0.47), (0.42, 0, 0),
                     ((0.13, CREAM), (0.23, RED), (1.0, CREAM)), 0.28)
    jib = sail((0, 0.98, BOW + 0.1), (0.1, 0.9, 0.42), (0, 3.6, 0.58), (0.36, 0, 0), ((1.0, CORAL),))
    glb.thing('Main Sail', ('Sail', main_sail, 0.024), parent=root)
    glb.thing('Jib', ('Sail', jib, 0.024), parent=root)
    flag = thickened(sheet(lambda u, v: (0.06 * math.sin(5 * u), (v - 0.5) * 0.26 * (1 - 0.8 * u), 0.75 * u), 4, 12), 0.02)
    glb.thing('Pennant', ('Cloth', tinted(flag, RED), HAIR), parent=root, translation=[0, 4.08, 0.5])
    glb.thing('Boat Foam', ('Foam', wake()), translation=[BOAT[0], 0, BOAT[1]], rotation=turn)


def wake():
    """About the hull, two lines from the bow and the water behind the stern."""
    outline = waterline(strake(lambda t: -0.1, lambda t: 0.2, NAVY))
    ring = foam_ring(outline, 0.26, 77)
    lines = []
    for side in (-1, 1):
        for start, spread, long in ((0.1, 0.34, 3.6), (0.5, 0.55, 3.0)):
            upper, lower = [], []
            for k in range(17):
                t = k / 16
                z = BOW - 0.1 - start - long * t
                x = side * (0.2 + spread * long * t * 0.6 + 0.28 * math.sin(math.pi * min(1, t * 1.2)) * 0.6)
                half = 0.06 * math.sin(math.pi * t) + 0.005
                upper.append((x + half, 0.011, z))
                lower.append((x - half, 0.011, z))
            lines.append(strip(lower, upper, UP) if True else None)
    trail = [facing_up(tinted(s, FOAM)) for s in lines]
    behind = []
    rng = random.Random(6)
    for k in range(7):
        z = STERN - 0.25 - 0.42 * k
        w = (0.5 + 0.1 * k) * rng.uniform(0.5, 0.9)
        x = rng.uniform(-0.2, 0.2)
        points = [(x + w * math.sin(a), 0.011, z + 0.07 * math.cos(a)) for a in [2 * math.pi * j / 20 for j in range(20)]]
        behind.append(tinted(Shape(points, [(0, j, j + 1) for j in range(1, 19)], [UP] * 20), FOAM))
    return merged(ring, *trail, *behind)


def facing_up(shape):
    return shape._replace(faces=[f if is_up(shape.points, f) else f[::-1] for f in shape.faces])


def product(a, b):
    ax, ay, az, aw = a
    bx, by, bz, bw = b
    return [aw * bx + ax * bw + ay * bz - az * by, aw * by - ax * bz + ay * bw + az * bx,
            aw * bz + ax * by - ay * bx + az * bw, aw * bw - ax * bx - ay * by - az * bz]


def dinghy(glb):
    """Drawn up on the sand, its bow to the land."""
    def lower(t): return sheer(t) - 0.2
    inside = [hull_point(t, sheer(t) - 0.16) for t in [j / 16 for j in range(17)]]
    floor = facing_up(strip([(-x, y, z) for x, y, z in inside], inside, UP))
    benches = [placed(box(1.1, 0.06, 0.26), (0, 0.42, z)) for z in (-0.9, 0.0)]
    oar = tube([(0.5, 0.62, -1.5), (-0.1, 0.66, 1.2)], 0.035)
    shape = merged(strake(keel, lower, CREAM), strake(lower, sheer, TEAL), tinted(floor, DARK_WOOD),
                   tinted(merged(*benches), PLANK), tinted(oar, PALE_PLANK))
    x, z = 2.35, -3.95
    glb.thing('Dinghy', ('Hull', shape, BROAD / DINGHY_SIZE), translation=on_ground(x, z, 0.12), scale=[DINGHY_SIZE] * 3,
              rotation=product(about_axis(UP, 128), about_axis((0, 0, 1), -14)))


DINGHY_SIZE = 0.42

BUOY = (7.0, 0, -2.5)


def buoy_shape():
    body = lathe([(0.0, -0.4), (0.36, -0.3), (0.46, -0.02), (0.4, 0.18), (0.2, 0.3)], 40, True)
    cone = lathe([(0.2, 0.3), (0.185, 0.5), (0.17, 0.68)], 32, True)
    upper = lathe([(0.17, 0.68), (0.14, 0.98), (0.0, 1.0)], 32)
    lamp = placed(sphere(0.09, 16, 10), (0, 1.07, 0))
    return merged(tinted(body, RED), tinted(cone, CREAM), tinted(upper, RED), tinted(lamp, AMBER))


def buoy(glb):
    glb.thing('Buoy', ('Buoy', buoy_shape(), BROAD * 0.85), translation=list(BUOY), rotation=about_axis((0, 0, 1), 9))
    outline = waterline(lathe([(0.46, -0.2), (0.46, 0.2)], 32), BUOY)
    glb.thing('Buoy Foam', ('Foam', foam_ring(outline, 0.34, 91)))


# Middle, top and bottom of the streak, width, colours: of the tower, the sails, the hull and the buoy.
REFLECTIONS = ((0.672, 0.95, 1.03, 0.06, ('#f3dcae', '#e0776a')), (0.205, 0.915, 1.01, 0.075, ('#e6dcc6',)),
               (0.258, 0.912, 0.97, 0.034, ('#e27a6a',)), (0.862, 0.955, 1.02, 0.028, ('#e0685a', '#f3dcc0')))


def reflections(glb):
    parts = [reflection(*streak, seed) for seed, streak in enumerate(REFLECTIONS, 50)]
    glb.thing('Reflections', ('Ripples', merged(*parts)))


def water(glb):
    glb.thing('Sea', ('Sea', sea()))
    waves(glb)
    reflections(glb)
    foam(glb)
    boat(glb)
    dinghy(glb)
    buoy(glb)
