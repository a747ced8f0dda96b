"""The lighthouse, the cottage, and what people have put about them."""

import math
import random

from .land import ground, on_ground, tuft
from .palette import (AMBER, BROAD, CORAL, CREAM, DEEP_RED, FINE, GLOW, HAIR, INK, LAMP, NAVY, PALE_PLANK,
                      PLANK, PLASTER, RED, TEAL, STONE, TILE_GAP, TILES, WHITE, WINDOW, WOOD)
from .shapes import (Shape, box, fan, flat, lathe, leaning, merged, placed, sheet, smoothed, sphere,
                     strip, thickened, tinted, tube)
from .vectors import about_axis, add, mix, mul, sub, turned, unit

UP = (0, 1, 0)


# --- lighthouse ------------------------------------------------------------------

LIGHTHOUSE = (4.25, -8.7)
TOWER_HEIGHT = 6.2
LAMP_HEIGHT = TOWER_HEIGHT + 0.72


def tower_radius(y):
    """Wide at the foot, narrowing in a slight curve."""
    t = y / TOWER_HEIGHT
    return 0.66 + 0.5 * (1 - t) ** 1.7


def tower_bands():
    bands = []
    for k in range(5):
        ys = [TOWER_HEIGHT * (k + j / 6) / 5 for j in range(7)]
        band = lathe([(tower_radius(y), y) for y in ys], 72, True)
        bands.append(tinted(band, CREAM if k % 2 else RED))
    return merged(*bands)


def arch(width, height, angle, foot, out):
    """A window or a door with a round top, laid on the wall of the tower, `out` before it."""
    half = width / 2
    def at(u, v):
        x = -half * math.cos(math.pi * u)
        y = v * (height - half + math.sqrt(max(0.0, half * half - x * x)))
        r = tower_radius(foot + y) + out
        a = math.radians(angle) + x / r
        return (r * math.sin(a), foot + y, r * math.cos(a))
    return sheet(at, 6, 17)


WINDOWS = ((-16, 2.1), (16, 3.4), (-16, 4.65))  # angle and foot


def tower_windows():
    frames = [tinted(arch(0.42, 0.66, angle, foot - 0.07, 0.02), NAVY) for angle, foot in WINDOWS]
    panes = [tinted(arch(0.28, 0.5, angle, foot, 0.045), WINDOW) for angle, foot in WINDOWS]
    door = arch(0.62, 1.06, DOOR_ANGLE, 0.1, 0.035)
    frame = arch(0.84, 1.2, DOOR_ANGLE, 0.1, 0.02)
    return (merged(*frames, tinted(frame, CREAM), tinted(door, NAVY)),
            merged(*panes))


DOOR_ANGLE = -38


def plinth():
    return tinted(lathe([(1.42, -0.6), (1.42, 0.06), (1.3, 0.1), (1.15, 0.1)], 64), STONE)


def gallery():
    h = TOWER_HEIGHT
    floor = tinted(lathe([(0.66, h - 0.16), (1.0, h + 0.02), (1.0, h + 0.14), (0.3, h + 0.14)], 72), CREAM)
    room = tinted(lathe([(0.56, h + 0.14), (0.56, h + 0.36), (0.46, h + 0.4)], 56), RED)
    return merged(floor, room)


def railing():
    h = TOWER_HEIGHT + 0.14
    circle = [2 * math.pi * k / 64 for k in range(65)]
    rails = [tube([(0.95 * math.sin(a), h + y, 0.95 * math.cos(a)) for a in circle], 0.018, 6)
             for y in (0.2, 0.4)]
    posts = [placed(lathe([(0.022, h), (0.022, h + 0.42)], 8), (0.95 * math.sin(a), 0, 0.95 * math.cos(a)))
             for a in [2 * math.pi * k / 16 for k in range(16)]]
    bars = [placed(lathe([(0.026, h + 0.2), (0.026, h + 1.0)], 8), (0.47 * math.sin(a), 0, 0.47 * math.cos(a)))
            for a in [2 * math.pi * (k + 0.3) / 8 for k in range(8)]]
    rod = lathe([(0.028, h + 1.7), (0.016, h + 2.3), (0.0, h + 2.3)], 10)
    return tinted(merged(*rails, *posts, *bars, rod), INK)


def dome():
    h = TOWER_HEIGHT + 1.06
    rim = lathe([(0.3, h), (0.7, h - 0.02), (0.7, h + 0.05), (0.6, h + 0.07)], 56)
    angles = [math.pi / 2 * k / 14 for k in range(15)]
    cap = lathe([(0.62 * math.cos(a) ** 0.9 if k < 14 else 0.0, h + 0.07 + 0.66 * math.sin(a)) for k, a in enumerate(angles)], 56, True)
    ball = placed(sphere(0.1, 20, 10), (0, h + 0.8, 0))
    return tinted(rim, DEEP_RED), merged(tinted(cap, RED), tinted(ball, NAVY))


def lighthouse(glb):
    base = on_ground(*LIGHTHOUSE, -0.05)
    details, panes = tower_windows()
    rim, cap = dome()
    tower = glb.thing('Lighthouse', ('Tower', merged(tower_bands(), plinth(), details), BROAD),
                      ('Window Light', panes), ('Gallery', merged(gallery(), rim), FINE), ('Iron', railing()),
                      ('Dome', cap, BROAD), translation=base)
    glb.thing('Lamp', ('Lamp', tinted(lathe([(0.44, -0.17), (0.457, -0.1), (0.457, 0.1), (0.44, 0.17)], 40), LAMP)), parent=tower,
              translation=[0, LAMP_HEIGHT, 0])
    glb.thing('Lantern Panes', ('Lamp', tinted(lathe([(0.44, TOWER_HEIGHT + 0.4), (0.44, TOWER_HEIGHT + 1.04)], 40), GLOW)),
              parent=tower)
    return tower, add(base, (0, LAMP_HEIGHT, 0))


# --- cottage -----------------------------------------------------------------------

COTTAGE, COTTAGE_TURN = (0.55, -7.5), -22
WIDTH, WALL, DEPTH, RISE, EAVES = 2.3, 1.12, 1.6, 1.0, 0.2


def tile(width, height):
    """A tile with a round foot, lying in the plane of x and y, its top at 0."""
    r = width / 2
    return [(r, 0.0), (-r, 0.0), *[(r * math.sin(a), -height + r * 0.75 * (1 - math.cos(a)))
                                   for a in [math.pi / 2 * (k / 4 - 1) for k in range(9)]]]


def tiled_slope(columns, rows):
    """Half of the roof, from the eaves up to the ridge along x: a slab with whole tiles
    on it, each row over the one below."""
    rng = random.Random(31)
    run, rise = DEPTH / 2 + EAVES, RISE * (DEPTH / 2 + EAVES) / (DEPTH / 2)
    size = math.hypot(run, rise)
    down, out = (0, -rise / size, run / size), (0, run / size, rise / size)
    across = (WIDTH + 2 * EAVES) / columns
    row_height = size / rows
    def at(x, y, lift): return add(add((x, 0, 0), mul(down, -y)), mul(out, lift))
    half = (WIDTH + 2 * EAVES) / 2
    slab = sheet(lambda u, v: at((2 * u - 1) * half, -size * (1 - v), 0.0), 2, 2)
    tiles = []
    for j in range(rows):
        shift = 0.5 * (j % 2)
        for i in range(columns + 1 if j % 2 else columns):
            left, right = max(0.0, i - shift), min(float(columns), i + 1 - shift)
            if right - left < 0.01:
                continue
            outline = tile((right - left) * across - 0.022, row_height * 1.02)
            centre = (left + right) / 2 * across - half
            points = [at(centre + x, y - j * row_height, 0.055 + 0.03 * (-y / row_height)) for x, y in outline]
            tiles.append(tinted(fan(points, out), rng.choice(TILES)))
    return tinted(thickened(slab, 0.09), TILE_GAP), merged(*tiles)


def roof():
    slab, tiles = tiled_slope(13, 7)
    front = merged(slab, tiles)
    both = merged(front, placed(front, turn=180))
    ridge = tube([(-(WIDTH / 2 + EAVES + 0.02), 0.07, 0), (WIDTH / 2 + EAVES + 0.02, 0.07, 0)], 0.075, 10)
    return placed(merged(both, tinted(ridge, TILES[1])), (0, WALL + RISE, 0))


def roof_slabs():
    slab, _ = tiled_slope(2, 2)
    ridge = tube([(-(WIDTH / 2 + EAVES + 0.02), 0.07, 0), (WIDTH / 2 + EAVES + 0.02, 0.07, 0)], 0.075, 10)
    return placed(merged(slab, placed(slab, turn=180), tinted(ridge, TILES[1])), (0, WALL + RISE, 0))


def walls():
    """Walls and gables in one piece."""
    x, z = WIDTH / 2, DEPTH / 2
    outline = [(z, -0.4), (-z, -0.4), (-z, WALL), (0, WALL + RISE), (z, WALL)]
    right = [(x, y, c) for c, y in outline]
    left = [(-x, y, c) for c, y in outline]
    gables = [(0, 1, 2), (0, 2, 4), (2, 3, 4)]
    sides = []
    for k in range(5):
        n = (k + 1) % 5
        sides.append(flat([right[k], left[k], left[n], right[n]], [(0, 1, 2), (0, 2, 3)]))
    return merged(flat(right, gables), flat(left, [g[::-1] for g in gables]), *sides[0:2], sides[4])


def panel(width, height, at, normal_turn, out):
    """A flat board before a wall."""
    shape = strip([(-width / 2, 0, out), (width / 2, 0, out)],
                  [(-width / 2, height, out), (width / 2, height, out)], (0, 0, 1))
    return placed(shape, at, normal_turn)


def cottage_window(at, turn):
    """Frame, shutters and the cross of the bars; and the panes, which are lit."""
    def board(w, h, x, y, out): return panel(w, h, add(at, turned((x, y, 0), turn)), turn, out)
    solid = [tinted(board(0.44, 0.5, 0, -0.04, 0.012), WHITE)]
    for side in (-1, 1):
        solid.append(tinted(board(0.15, 0.5, side * 0.315, -0.04, 0.012), TEAL))
    solid.append(tinted(placed(box(0.6, 0.06, 0.1), add(at, turned((0, -0.1, 0.04), turn)), turn), TEAL))
    panes = [tinted(board(0.155, 0.185, sx * 0.0925, 0.015 + sy * 0.215, 0.02), WINDOW)
             for sx in (-1, 1) for sy in (0, 1)]
    return merged(*solid), merged(*panes)


def cottage(glb):
    x, z = WIDTH / 2, DEPTH / 2
    windows = [cottage_window((-0.62, 0.42, z), 0), cottage_window((0.62, 0.42, z), 0),
               cottage_window((x, 0.42, 0.0), 90)]
    door = merged(tinted(panel(0.52, 0.94, (0, -0.02, z), 0, 0.012), WHITE),
                  tinted(panel(0.4, 0.86, (0, -0.02, z), 0, 0.02), RED),
                  tinted(placed(sphere(0.03, 10, 6), (0.13, 0.4, z + 0.03)), AMBER))
    step = tinted(placed(box(0.7, 0.22, 0.3), (0, -0.24, z + 0.15)), STONE)
    base = tinted(placed(box(WIDTH + 0.08, 0.5, DEPTH + 0.08), (0, -0.5, 0)), STONE)
    chimney = merged(tinted(placed(box(0.34, 0.95, 0.34), (-0.6, WALL + 0.5, -0.28)), PLASTER),
                     tinted(placed(box(0.44, 0.1, 0.44), (-0.6, WALL + 1.42, -0.28)), DEEP_RED),
                     tinted(placed(lathe([(0.09, 0), (0.07, 0.22), (0.0, 0.22)], 14), (-0.6, WALL + 1.5, -0.28)), TILE_GAP))
    body = tinted(walls(), PLASTER)
    node = glb.thing('Cottage', ('Cottage', merged(body, base, step, door, *[w for w, _ in windows]), FINE),
              ('Chimney', chimney, FINE), ('Roof', roof(), HAIR),
              ('Window Light', merged(*[p for _, p in windows])),
              translation=on_ground(*COTTAGE, 0.16), rotation=about_axis(UP, COTTAGE_TURN))
    smoke(glb, node)


SMOKE = ((0.0, 0.0, 0.13), (0.16, 0.3, 0.19), (0.42, 0.62, 0.25), (0.8, 0.95, 0.21), (1.2, 1.2, 0.14))


def smoke(glb, cottage_node):
    """Puffs that the wind takes along, each a node."""
    wind = turned((1, 0, 0), -COTTAGE_TURN)
    for number, (along, up, radius) in enumerate(SMOKE, 1):
        glb.thing('Smoke %d' % number, ('Smoke', tinted(placed(sphere(radius, 24, 12), scale=(1.15, 0.9, 1)), '#efe0dc')),
                  parent=cottage_node, translation=add((-0.6, WALL + 1.95 + up, -0.28), mul(wind, along)))


# --- jetty, fence, washing, keeper ------------------------------------------------------

JETTY, JETTY_TURN, JETTY_LENGTH = (-0.75, -4.85), -48, 4.4


def jetty(glb):
    rng = random.Random(4)
    planks, posts = [], []
    count = 17
    for k in range(count):
        color = (PLANK, PALE_PLANK, PLANK, '#c3925c')[rng.randrange(4)]
        board = placed(box(1.0 + rng.uniform(-0.04, 0.04), 0.07, JETTY_LENGTH / count - 0.03),
                       (rng.uniform(-0.02, 0.02), 0.42, JETTY_LENGTH * (k + 0.5) / count))
        planks.append(tinted(board, color))
    for side in (-1, 1):
        planks.append(tinted(placed(box(0.09, 0.12, JETTY_LENGTH), (side * 0.36, 0.3, JETTY_LENGTH / 2)), WOOD))
    for z in JETTY_POSTS:
        for side in (-1, 1):
            posts.append(placed(lathe([(0.085, -0.5), (0.085, 0.72), (0.0, 0.74)], 16), (side * 0.5, 0, z)))
    rope = [tube([(0.5, 0.62 - 0.16 * math.sin(math.pi * t), a + (b - a) * t) for t in [k / 8 for k in range(9)]], 0.016, 6)
            for a, b in zip(JETTY_POSTS, JETTY_POSTS[1:])]
    glb.thing('Jetty', ('Planks', merged(*planks), HAIR), ('Wood', tinted(merged(*posts), WOOD), FINE),
              ('Iron', tinted(merged(*rope), INK)),
              translation=[JETTY[0], 0, JETTY[1]], rotation=about_axis(UP, JETTY_TURN))


JETTY_POSTS = (0.5, 1.7, 2.9, 4.1)


def jetty_post_places():
    """On the water."""
    return [add((JETTY[0], 0, JETTY[1]), turned((side * 0.5, 0, z), JETTY_TURN))
            for z in JETTY_POSTS for side in (-1, 1)]


def on_jetty(z):
    """The middle of its planks, z metres from the land."""
    return add((JETTY[0], 0.49, JETTY[1]), turned((0, 0, z), JETTY_TURN))


def fence(places):
    """Posts with two rails, along places on the ground."""
    feet = [on_ground(x, z) for x, z in places]
    posts = [placed(box(0.075, 0.62, 0.075), add(p, (0, -0.08, 0)), 20) for p in feet]
    rails = []
    for a, b in zip(feet, feet[1:]):
        for y in (0.2, 0.4):
            rails.append(tube([add(a, (0, y, 0)), add(b, (0, y, 0))], 0.025, 6))
    return tinted(merged(*posts, *rails), CREAM)


FENCE = ((5.0, -5.0), (5.85, -5.25), (6.65, -5.65), (7.35, -6.25), (7.9, -7.0), (8.2, -7.8), (8.3, -8.7))


def fences(glb):
    glb.thing('Fence', ('Fence', fence(FENCE), HAIR))


CLOTHES = ((0.4, 0.52, RED), (0.32, 0.44, CREAM), (0.44, 0.6, '#4f9aa6'), (0.28, 0.4, AMBER), (0.34, 0.38, WHITE))


def washing(glb, start, end):
    a, b = on_ground(*start), on_ground(*end)
    posts = [placed(lathe([(0.035, -0.1), (0.03, 1.15), (0.0, 1.16)], 10), p) for p in (a, b)]
    high_a, high_b = add(a, (0, 1.08, 0)), add(b, (0, 1.08, 0))
    def on_line(t): return sub(mix(high_a, high_b, t), (0, 0.09 * math.sin(math.pi * t), 0))
    line = tube([on_line(k / 16) for k in range(17)], 0.012, 6)
    root = glb.thing('Washing Line', ('Wood', tinted(merged(*posts), WOOD), HAIR), ('Iron', tinted(line, INK)))
    along = unit(sub(high_b, high_a))
    span = math.dist(high_a, high_b)
    t = 0.1
    for number, (width, drop, color) in enumerate(CLOTHES, 1):
        share = width / span
        pivot = on_line(t + share / 2)
        def hang(u, v, width=width, drop=drop, number=number):
            flutter = (1 - v) * (0.1 * math.sin(5 * u + number) + 0.16)
            return (along[0] * width * (u - 0.5) + flutter * 0.5, -drop * (1 - v), along[2] * width * (u - 0.5) - flutter * 0.4)
        cloth = thickened(sheet(hang, 8, 8), 0.02)
        glb.thing('Washing %d' % number, ('Cloth', tinted(cloth, color), HAIR), parent=root, translation=pivot)
        t += share + 0.035


def keeper(glb, place, turn):
    """In oilskins, waving."""
    coat = lathe([(0.2, 0.16), (0.19, 0.3), (0.15, 0.62), (0.1, 0.74), (0.0, 0.76)], 24, True)
    legs = [placed(lathe([(0.06, -0.02), (0.06, 0.2)], 12), (s * 0.075, 0, 0)) for s in (-1, 1)]
    head = placed(sphere(0.115, 20, 10), (0, 0.85, 0))
    brim = lathe([(0.2, 0.88), (0.13, 0.93)], 24)
    hat = lathe([(0.13, 0.92), (0.12, 1.0), (0.07, 1.05), (0.0, 1.06)], 24, True)
    def arm(*path): return tube(list(path), 0.05, 8)
    raised = arm((-0.12, 0.64, 0), (-0.26, 0.76, 0.03), (-0.34, 1.0, 0.03))
    lowered = arm((0.12, 0.64, 0), (0.22, 0.5, 0.02), (0.22, 0.34, 0.06))
    hands = [placed(sphere(0.052, 12, 6), p) for p in ((-0.35, 1.04, 0.03), (0.22, 0.31, 0.06))]
    body = glb.thing('Keeper', ('Figure', merged(tinted(coat, AMBER), tinted(merged(*legs), NAVY),
                     tinted(merged(head, *hands), '#f2b48c'), tinted(merged(brim, hat), AMBER), tinted(merged(raised, lowered), AMBER)), FINE * 0.9),
                     translation=place, rotation=about_axis(UP, turn), scale=[1.0] * 3)
    return body
