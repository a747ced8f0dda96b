"""The keeper, and what people have put about the island: jetty, fence, washing."""

import math
import random

from .land import on_ground
from .motion import clock, swing, waving
from .palette import AMBER, CORAL, CREAM, FINE, HAIR, INK, NAVY, PALE_PLANK, PLANK, RED, SKIN, WHITE, WOOD
from .shapes import box, lathe, merged, placed, sheet, sphere, thickened, tinted, tube
from .vectors import UP, about, add, mix, sub, turned, unit


# --- jetty ------------------------------------------------------------------------------

JETTY, JETTY_TURN, JETTY_LENGTH = (-0.75, 0, -4.85), -48, 4.4
JETTY_POSTS = (0.5, 1.7, 2.9, 4.1)  # metres from the land
POST = lathe([(0.085, -0.5), (0.085, 0.72), (0.0, 0.74)], 16)


def on_jetty(along, across=0.0, height=0.49):
    """A place in the world, `along` metres from the land; 0.49 m is the top of the planks."""
    return add(JETTY, turned((across, height, along), JETTY_TURN))


def planks(count=17):
    rng = random.Random(4)
    boards = []
    for k in range(count):
        board = box(1.0 + rng.uniform(-0.04, 0.04), 0.07, JETTY_LENGTH / count - 0.03)
        at = (rng.uniform(-0.02, 0.02), 0.42, JETTY_LENGTH * (k + 0.5) / count)
        boards.append(tinted(placed(board, at), rng.choice((PLANK, PALE_PLANK))))
    beams = [placed(box(0.09, 0.12, JETTY_LENGTH), (side * 0.36, 0.3, JETTY_LENGTH / 2)) for side in (-1, 1)]
    return merged(*boards, tinted(merged(*beams), WOOD))


def sagging(start, end, sag, count):
    """A line of points that hangs between two."""
    return [sub(mix(start, end, k / count), (0, sag * math.sin(math.pi * k / count), 0)) for k in range(count + 1)]


def jetty(glb):
    posts = [placed(POST, (side * 0.5, 0, z)) for z in JETTY_POSTS for side in (-1, 1)]
    ropes = [tube(sagging((0.5, 0.62, a), (0.5, 0.62, b), 0.16, 8), 0.016, 6)
             for a, b in zip(JETTY_POSTS, JETTY_POSTS[1:])]
    glb.thing('Jetty', ('Planks', planks(), HAIR), ('Wood', tinted(merged(*posts), WOOD), FINE),
              ('Iron', tinted(merged(*ropes), INK)), translation=JETTY, rotation=about(UP, JETTY_TURN))


# --- fence and washing ----------------------------------------------------------------------

FENCE = ((5.0, -5.0), (5.85, -5.25), (6.65, -5.65), (7.35, -6.25), (7.9, -7.0), (8.2, -7.8), (8.3, -8.7))


def fence(glb):
    feet = [on_ground(x, z) for x, z in FENCE]
    posts = [placed(box(0.075, 0.62, 0.075), add(p, (0, -0.08, 0)), 20) for p in feet]
    rails = [tube([add(a, (0, y, 0)), add(b, (0, y, 0))], 0.025, 6)
             for a, b in zip(feet, feet[1:]) for y in (0.2, 0.4)]
    glb.thing('Fence', ('Fence', tinted(merged(*posts, *rails), CREAM), HAIR))


LINE = ((-3.0, -7.2), (-1.15, -6.55))
CLOTHES = ((0.36, 0.5, RED), (0.28, 0.44, CREAM), (0.42, 0.6, CORAL), (0.26, 0.4, AMBER), (0.3, 0.38, WHITE))


def washing(glb):
    """A line between two posts; every piece hangs from a node of its own."""
    feet = [on_ground(*place) for place in LINE]
    posts = [placed(lathe([(0.035, -0.1), (0.03, 1.15), (0.0, 1.16)], 10), foot) for foot in feet]
    line = sagging(*[add(foot, (0, 1.08, 0)) for foot in feet], 0.09, 32)
    node = glb.thing('Washing Line', ('Wood', tinted(merged(*posts), WOOD), HAIR),
                     ('Iron', tinted(tube(line, 0.012, 6), INK)))
    along, span = unit(sub(line[-1], line[0])), math.dist(line[0], line[-1])
    start = 0.06 * span
    for number, (width, drop, color) in enumerate(CLOTHES, 1):
        pivot = line[round((start + width / 2) / span * 32)]
        piece = waving(lambda sway: tinted(cloth(along, width, drop, number, sway), color), True)
        swung = glb.waving('Washing %d' % number, ('Cloth', piece, HAIR), parent=node, translation=pivot, cycles=2)
        glb.animate(swung, 'rotation', lambda t, number=number: about(along, -7 * swing(t, 2 - 0.5 * number)))
        start += width + 0.03


def cloth(along, width, drop, seed, sway):
    """Hangs from the origin, blown aside; folds run across it."""
    def at(u, v):
        blown = (1 - v) * (0.1 * math.sin(5 * u + seed) + 0.06 * sway(-5 * u - 2 * v - seed) + 0.16)
        across = width * (u - 0.5)
        return (along[0] * across + 0.5 * blown, -drop * (1 - v), along[2] * across - 0.4 * blown)
    return thickened(sheet(at, 8, 8), 0.02)


# --- the keeper ---------------------------------------------------------------------------

def keeper(glb):
    """In oilskins on the jetty, waving to the boat; the arm that waves is a node."""
    coat = lathe([(0.2, 0.16), (0.19, 0.3), (0.15, 0.62), (0.1, 0.74), (0.0, 0.76)], 24, is_round=True)
    hat = merged(lathe([(0.2, 0.88), (0.13, 0.93)], 24),
                 lathe([(0.13, 0.92), (0.12, 1.0), (0.07, 1.05), (0.0, 1.06)], 24, is_round=True))
    sleeve = tube([(0.12, 0.64, 0), (0.22, 0.5, 0.02), (0.22, 0.34, 0.06)], 0.05)
    legs = [placed(lathe([(0.06, -0.02), (0.06, 0.2)], 12), (side * 0.075, 0, 0)) for side in (-1, 1)]
    skin = merged(placed(sphere(0.115, 20, 10), (0, 0.85, 0)), placed(sphere(0.052, 12, 6), (0.22, 0.31, 0.06)))
    figure = merged(tinted(merged(coat, hat, sleeve), AMBER), tinted(merged(*legs), NAVY), tinted(skin, SKIN))
    node = glb.thing('Keeper', ('Figure', figure, FINE), translation=on_jetty(3.3), rotation=about(UP, -40))
    raised = tube([(0, 0, 0), (-0.14, 0.12, 0.03), (-0.22, 0.36, 0.03)], 0.05)
    hand = placed(sphere(0.052, 12, 6), (-0.23, 0.4, 0.03))
    arm = glb.thing('Waving Arm', ('Figure', merged(tinted(raised, AMBER), tinted(hand, SKIN)), FINE), parent=node,
                    translation=[-0.12, 0.64, 0])
    glb.animate(arm, 'rotation', lambda t: about((0, 0, 1), -15 * swing(t, 0, 4)), 32)
