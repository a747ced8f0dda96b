"""The keeper's cottage."""

import math
import random

from .land import on_ground
from .motion import PERIOD
from .palette import (AMBER, DEEP_RED, FINE, HAIR, PLASTER, RED, SMOKE, STONE, TEAL, TILE_GAP, TILES, WHITE, WINDOW)
from .shapes import box, fan, flat, lathe, merged, placed, sheet, sphere, strip, thickened, tinted, tube
from .vectors import UP, about, add, mix, mul, turned

PLACE, TURN = (0.55, -7.5), -22
WIDTH, WALL, DEPTH, RISE, EAVES = 2.3, 1.12, 1.6, 1.0, 0.2  # the ridge runs along x
CHIMNEY = (-0.6, -0.28)


# --- roof ---------------------------------------------------------------------------

RUN = DEPTH / 2 + EAVES
SLOPE = math.hypot(RUN, RISE * RUN / (DEPTH / 2))        # length from the ridge to the eaves
DOWN = (0, -RISE * RUN / (DEPTH / 2) / SLOPE, RUN / SLOPE)
OUT = (0, DOWN[2], -DOWN[1])
ROOF_WIDTH = WIDTH + 2 * EAVES


def on_slope(x, down, lift):
    return add(add((x, 0, 0), mul(DOWN, down)), mul(OUT, lift))


def tile(left, right, top, height):
    """With a round foot that stands off the slope a little."""
    r, middle = (right - left) / 2, (left + right) / 2
    foot = [(r * math.sin(a), height - 0.75 * r * (1 - math.cos(a))) for a in
            [math.pi / 2 * (k / 4 - 1) for k in range(9)]]
    outline = [(r, 0.0), (-r, 0.0), *foot]
    return fan([on_slope(middle + x, top + y, 0.055 + 0.03 * y / height) for x, y in outline], OUT)


def tiles(columns=13, rows=7):
    """Whole rows from the ridge to the eaves, every second one moved by half a tile."""
    rng = random.Random(31)
    across, height, gap = ROOF_WIDTH / columns, SLOPE / rows, 0.011
    laid = []
    for j in range(rows):
        borders = [-ROOF_WIDTH / 2, *[(i - 0.5 * (j % 2)) * across - ROOF_WIDTH / 2 for i in range(1, columns + j % 2)],
                   ROOF_WIDTH / 2]
        for left, right in zip(borders, borders[1:]):
            laid.append(tinted(tile(left + gap, right - gap, j * height, 1.02 * height), rng.choice(TILES)))
    return merged(*laid)


def roof():
    slab = sheet(lambda u, v: on_slope((u - 0.5) * ROOF_WIDTH, (1 - v) * SLOPE, 0.0), 2, 2)
    side = merged(tinted(thickened(slab, 0.09), TILE_GAP), tiles())
    end = ROOF_WIDTH / 2 + 0.02
    ridge = tinted(tube([(-end, 0.07, 0), (end, 0.07, 0)], 0.075, 10), TILES[1])
    return placed(merged(side, placed(side, turn=180), ridge), (0, WALL + RISE, 0))


# --- walls --------------------------------------------------------------------------

def walls():
    """With gables, without a floor."""
    x, z = WIDTH / 2, DEPTH / 2
    outline = [(z, 0), (-z, 0), (-z, WALL), (0, WALL + RISE), (z, WALL)]
    right, left = [[(side * x, y, c) for c, y in outline] for side in (1, -1)]
    gable = [(0, 1, 2), (0, 2, 4), (2, 3, 4)]
    front = flat([left[0], right[0], right[4], left[4]], [(0, 1, 2), (0, 2, 3)])
    return merged(flat(right, gable), flat(left, [face[::-1] for face in gable]), front, placed(front, turn=180))


def board(width, height, x, y, wall, out):
    """A rectangle before a wall, which is told by its distance from the middle and its turn."""
    distance, turn = wall
    z = distance + out
    face = strip([(x - width / 2, y, z), (x + width / 2, y, z)],
                 [(x - width / 2, y + height, z), (x + width / 2, y + height, z)], (0, 0, 1))
    return placed(face, turn=turn)


FRONT, RIGHT = (DEPTH / 2, 0), (WIDTH / 2, 90)
WINDOWS = ((-0.62, 0.42, FRONT), (0.62, 0.42, FRONT), (0.0, 0.42, RIGHT))


def window_frame(x, y, wall):
    frame = tinted(board(0.44, 0.5, x, y - 0.04, wall, 0.012), WHITE)
    shutters = [tinted(board(0.15, 0.5, x + side, y - 0.04, wall, 0.012), TEAL) for side in (-0.315, 0.315)]
    sill = placed(placed(box(0.6, 0.06, 0.1), (x, y - 0.1, wall[0] + 0.04)), turn=wall[1])
    return merged(frame, *shutters, tinted(sill, TEAL))


def window_panes(x, y, wall):
    return merged(*[tinted(board(0.155, 0.185, x + side, y + up, wall, 0.02), WINDOW)
                    for side in (-0.0925, 0.0925) for up in (0.015, 0.23)])


def door():
    z = DEPTH / 2
    return merged(tinted(board(0.52, 0.94, 0, -0.02, FRONT, 0.012), WHITE),
                  tinted(board(0.4, 0.86, 0, -0.02, FRONT, 0.02), RED),
                  tinted(placed(sphere(0.03, 10, 6), (0.13, 0.4, z + 0.03)), AMBER),
                  tinted(placed(box(0.7, 0.22, 0.3), (0, -0.24, z + 0.15)), STONE))


def chimney():
    x, z = CHIMNEY
    return merged(tinted(placed(box(0.34, 0.95, 0.34), (x, WALL + 0.5, z)), PLASTER),
                  tinted(placed(box(0.44, 0.1, 0.44), (x, WALL + 1.42, z)), DEEP_RED),
                  tinted(placed(lathe([(0.09, 0), (0.07, 0.22), (0.0, 0.22)], 14), (x, WALL + 1.5, z)), TILE_GAP))


# How far a puff has come with the wind and upwards, and its radius.
PUFFS = ((0.0, 0.0, 0.13), (0.16, 0.3, 0.19), (0.42, 0.62, 0.25), (0.8, 0.95, 0.21), (1.2, 1.2, 0.14))


# How it begins, in the chimney, and how it ends.
FIRST_PUFF, LAST_PUFF = (-0.02, -0.2, 0.004), (1.42, 1.34, 0.004)


def puff_at(way):
    """On its way from puff to puff; halfway before the first it leaves the chimney, and
    halfway after the last it is gone."""
    stops = [FIRST_PUFF, *PUFFS, LAST_PUFF]
    places = [-0.5, *range(len(PUFFS)), len(PUFFS) - 0.5]
    for before, after, a, b in zip(places, places[1:], stops, stops[1:]):
        if way <= after:
            return mix(a, b, (way - before) / (after - before))
    return LAST_PUFF


def smoke(glb, cottage_node):
    """Each puff takes the whole way in a loop."""
    wind = turned((1, 0, 0), -TURN)
    def place(along, up, _): return add((CHIMNEY[0], WALL + 1.95 + up, CHIMNEY[1]), mul(wind, along))
    count, jump = len(PUFFS), 1e-3
    for number, puff in enumerate(PUFFS):
        radius = puff[2]
        ball = placed(sphere(radius, 24, 12), scale=(1.15, 0.9, 1))
        node = glb.thing('Smoke %d' % (number + 1), ('Smoke', tinted(ball, SMOKE)), parent=cottage_node,
                         translation=place(*puff))
        gone = count - 0.5 - number
        ways = sorted([k / 2 for k in range(2 * count + 1) if k / 2 != gone] + [gone - jump, gone])
        stations = [puff_at((number + way + 0.5) % count - 0.5) for way in ways]
        times = [PERIOD * way / count for way in ways]
        glb.animate_straight(node, 'translation', times, [place(*station) for station in stations])
        glb.animate_straight(node, 'scale', times, [[station[2] / radius] * 3 for station in stations])


def cottage(glb):
    base = tinted(placed(box(WIDTH + 0.08, 0.5, DEPTH + 0.08), (0, -0.5, 0)), STONE)
    house = merged(tinted(walls(), PLASTER), base, door(), *[window_frame(*w) for w in WINDOWS])
    node = glb.thing('Cottage', ('Cottage', house, FINE), ('Chimney', chimney(), FINE), ('Roof', roof(), HAIR),
                     ('Window Light', merged(*[window_panes(*w) for w in WINDOWS])),
                     translation=on_ground(*PLACE, 0.16), rotation=about(UP, TURN))
    smoke(glb, node)
