"""The sailing boat, the dinghy on the sand and the buoy. Boats lie along z, bow at +z,
with the waterline at y = 0. Along a hull, t runs from the bow (0) to the transom (1)."""

import math

from .land import on_ground
from .motion import swell, swing, waving
from .palette import (AMBER, BROAD, CORAL, CREAM, DARK_WOOD, HAIR, INK, NAVY, PALE_PLANK, PLANK, RED, TEAL, WOOD)
from .shapes import (Shape, box, facing, grid_faces, lathe, merged, mirrored, placed, sheet, sphere, strip, thickened,
                     tinted, tube)
from .vectors import UP, about, add, mix, mul, product, sub, unit

BOW, STERN, DRAUGHT = 1.75, -1.6, 0.42
BOAT, BOAT_TURN, HEEL = (-6.9, 0, -6.3), 66, -5
BUOY = (7.0, 0, -2.5)
DINGHY, DINGHY_SIZE = (2.35, -3.95), 0.42


# --- hulls ----------------------------------------------------------------------------

def half_breadth(t): return 0.72 * math.sin(math.pi * (0.02 + 0.63 * t)) ** 0.85 if t > 0 else 0.0
def sheer(t): return 0.5 + 0.36 * (1 - t) ** 2.2 + 0.06 * t * t
def keel(t): return -DRAUGHT + 0.3 * max(0.0, 0.25 - t) / 0.25


def hull_point(t, y):
    """On the starboard side, +x; y from the keel to the sheer."""
    share = min(1.0, max(0.0, (y - keel(t)) / (sheer(t) - keel(t))))
    rake = 0.32 * (1 - t) ** 6 * y
    return (half_breadth(t) * (1 - (1 - share) ** 2.4), y, BOW + (STERN - BOW) * t + rake)


def strake(low, high, color):
    """Both sides and the transom between two heights, functions of t."""
    rows, stations = 6, 26
    def at(t, v): return hull_point(t, low(t) + (high(t) - low(t)) * v)
    starboard = sheet(at, rows, stations)
    edge = [at(1.0, j / (rows - 1)) for j in range(rows)]
    transom = Shape([p for x, y, z in edge for p in ((x, y, z), (-x, y, z))], grid_faces(rows, 2),
                    [(0, 0, -1)] * (2 * rows))
    return tinted(merged(starboard, mirrored(starboard), transom), color)


def deck(depth, color):
    """From side to side, `depth` below the sheer."""
    edge = [hull_point(t, sheer(t) - depth) for t in [j / 24 for j in range(25)]]
    return tinted(facing(strip([(-x, y, z) for x, y, z in edge], edge, UP), UP), color)


def boat_hull():
    def bottom_end(t): return 0.09
    def side_end(t): return sheer(t) - 0.13
    cabin = tinted(placed(box(0.62, 0.26, 0.85), (0, 0.5, 0.05)), CREAM)
    roof = tinted(placed(box(0.7, 0.05, 0.95), (0, 0.76, 0.05)), RED)
    ports = [tinted(placed(box(0.64, 0.09, 0.12), (0, 0.6, z)), NAVY) for z in (-0.2, 0.05, 0.3)]
    return merged(strake(keel, bottom_end, NAVY), strake(bottom_end, side_end, RED), strake(side_end, sheer, CREAM),
                  deck(0.05, PLANK), cabin, roof, *ports)


# --- sails ------------------------------------------------------------------------------

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


def main_sail():
    return sail((0.02, 1.06, 0.44), (0.12, 1.04, -1.5), (0.0, 4.0, 0.47), (0.42, 0, 0),
                ((0.13, CREAM), (0.23, RED), (1.0, CREAM)), 0.28)


def jib():
    return sail((0, 0.98, BOW + 0.1), (0.1, 0.9, 0.42), (0, 3.6, 0.58), (0.36, 0, 0), ((1.0, CORAL),))


def pennant(sway):
    """Streams from the origin; its waves run to its end."""
    def at(u, v):
        wave = 0.08 * u * sway(-5 * u)
        return (0.06 * math.sin(5 * u) + wave, (v - 0.5) * 0.26 * (1 - 0.8 * u) + 0.6 * wave, 0.75 * u)
    return tinted(thickened(sheet(at, 4, 12), 0.02), RED)


def boat(glb):
    node = glb.node('Boat', translation=BOAT, rotation=product(about(UP, BOAT_TURN), about((0, 0, 1), HEEL)))
    mast = placed(lathe([(0.05, 0.3), (0.03, 4.15)], 12), (0, 0, 0.5))
    boom = tube([(0, 1.0, 0.5), (0.1, 0.98, -1.55)], 0.035)
    forestay = tube([(0, sheer(0) - 0.02, BOW + 0.25), (0, 3.9, 0.5)], 0.012, 6)
    glb.thing('Hull', ('Hull', boat_hull(), 0.9 * BROAD), ('Mast', tinted(merged(mast, boom), WOOD), HAIR),
              ('Iron', tinted(forestay, INK)), parent=node)
    glb.animate(node, 'translation', lambda t: afloat(t, BOAT, 0.06))
    glb.animate(node, 'rotation', lambda t: product(about(UP, BOAT_TURN), rocking(t, BOAT, 2, HEEL, 2.5)))
    for name, sail, phase in (('Main Sail', main_sail(), 1.2), ('Jib', jib(), 0.6)):
        cloth = glb.thing(name, ('Sail', sail, 0.7 * BROAD), parent=node)
        # The wind fills it more and less: it is flat along x.
        glb.animate(cloth, 'scale', lambda t, phase=phase: [1 + 0.09 * swing(t, phase), 1, 1])
    glb.waving('Pennant', ('Cloth', waving(pennant, True), HAIR), parent=node, translation=[0, 4.08, 0.5], cycles=3)


# --- on the swell ---------------------------------------------------------------------

def afloat(t, place, height):
    """Rises and falls with the water."""
    return add(place, (0, height * swing(t, swell(place[0], place[2])), 0))


def rocking(t, place, pitch, heel, roll):
    """Turns with the slope of the swell, which is steepest between its crests; degrees."""
    phase = swell(place[0], place[2]) + math.pi / 2
    return product(about((1, 0, 0), pitch * swing(t, phase)), about((0, 0, 1), heel + roll * swing(t, phase - 0.5)))


# --- dinghy and buoy ----------------------------------------------------------------------

def dinghy(glb):
    """Drawn up on the sand, leaning on its side."""
    def side_end(t): return sheer(t) - 0.2
    benches = [placed(box(1.1, 0.06, 0.26), (0, 0.42, z)) for z in (-0.9, 0.0)]
    oar = tube([(0.5, 0.62, -1.5), (-0.1, 0.66, 1.2)], 0.035)
    shape = merged(strake(keel, side_end, CREAM), strake(side_end, sheer, TEAL), deck(0.16, DARK_WOOD),
                   tinted(merged(*benches), PLANK), tinted(oar, PALE_PLANK))
    glb.thing('Dinghy', ('Hull', shape, BROAD / DINGHY_SIZE), translation=on_ground(*DINGHY, 0.12),
              rotation=product(about(UP, 128), about((0, 0, 1), 16)), scale=[DINGHY_SIZE] * 3)


def buoy(glb):
    body = lathe([(0.0, -0.4), (0.36, -0.3), (0.46, -0.02), (0.4, 0.18), (0.2, 0.3)], 40, is_round=True)
    ring = lathe([(0.2, 0.3), (0.185, 0.5), (0.17, 0.68)], 32, is_round=True)
    top = lathe([(0.17, 0.68), (0.14, 0.98), (0.0, 1.0)], 32)
    light = placed(sphere(0.09, 16, 10), (0, 1.07, 0))
    node = glb.thing('Buoy', ('Buoy', merged(tinted(merged(body, top), RED), tinted(ring, CREAM), tinted(light, AMBER)),
                       0.85 * BROAD), translation=BUOY, rotation=about((0, 0, 1), 9))
    glb.animate(node, 'translation', lambda t: afloat(t, BUOY, 0.05))
    glb.animate(node, 'rotation', lambda t: rocking(t, BUOY, 2, 9, 5))


def boats(glb):
    boat(glb)
    dinghy(glb)
    buoy(glb)
