"""Gulls. They look along -z; a wing is a node that turns at the shoulder."""

import math

from .palette import BEAK, FEATHERS, HAIR, NAVY, WHITE
from .picture import at_distance
from .shapes import laid, lathe, merged, mirrored, placed, sheet, sphere, thickened, tinted
from .vectors import UP, about, product

# Place in the picture and distance, heading, roll, how high the wings are, size.
FLYING = ((0.30, 0.245, 20, 62, 14, 0.22, 1.0), (0.385, 0.175, 16.5, 75, -16, 0.12, 0.68),
          (0.235, 0.155, 27, 60, 10, 0.2, 0.9), (0.90, 0.235, 26, -60, -12, 0.2, 0.9),
          (0.46, 0.30, 34, 70, 8, 0.16, 0.9))
RESTING = ((-6.75, 0.36, -0.85), 242)


def right_wing(lift):
    """From the shoulder at the origin, bent at the elbow, with a dark tip."""
    def at(u, v):
        bow = 0.2 * math.sin(0.95 * math.pi * u) + (lift - 0.2) * u
        chord = 0.2 * (1 - u) ** 0.7 + 0.012
        sweep = 0.16 * u * u - 0.05 * math.sin(math.pi * u)
        return (0.62 * u, bow, sweep + chord * (0.5 - v))
    def part(first, last, color):
        return tinted(sheet(lambda u, v: at(first + (last - first) * u, v), 4, 8), color)
    return thickened(merged(part(0.0, 0.72, WHITE), part(0.72, 1.0, NAVY)), 0.016)


def body():
    trunk = lathe([(0.0, -0.2), (0.035, -0.18), (0.05, -0.13), (0.062, -0.05), (0.055, 0.06),
                   (0.03, 0.16), (0.045, 0.24), (0.0, 0.25)], 16, is_round=True)
    beak = lathe([(0.0, -0.27), (0.016, -0.19)], 10)
    return merged(tinted(laid(trunk), WHITE), tinted(laid(beak), BEAK))


def flying_gull(glb, name, u, v, far, heading, roll, lift, size):
    node = glb.thing(name, ('Gull', body(), HAIR / size), translation=at_distance(u, v, far),
                     rotation=product(about(UP, heading), about((0, 0, 1), roll)), scale=[size] * 3)
    wing = right_wing(lift)
    for side, word, shape in ((1, 'Right', wing), (-1, 'Left', mirrored(wing))):
        glb.thing('%s %s Wing' % (name, word), ('Gull', shape, HAIR / size), parent=node,
                  translation=[side * 0.035, 0.03, 0])


def resting_gull(glb, place, heading):
    """On its feet, the wings folded."""
    trunk = placed(sphere(1.0, 20, 10), (0, 0.2, 0), scale=(0.09, 0.095, 0.19))
    head = placed(sphere(0.068, 16, 8), (0, 0.33, -0.13))
    beak = placed(laid(lathe([(0.0, -0.11), (0.02, 0.0)], 8)), (0, 0.32, -0.19))
    wings = [placed(sphere(1.0, 16, 8), (side * 0.07, 0.23, 0.05), scale=(0.035, 0.07, 0.19)) for side in (-1, 1)]
    tail = placed(sphere(1.0, 12, 6), (0, 0.22, 0.2), scale=(0.04, 0.025, 0.1))
    legs = [placed(lathe([(0.012, -0.02), (0.012, 0.14)], 6), (side * 0.035, 0, -0.02)) for side in (-1, 1)]
    gull = merged(tinted(merged(trunk, head), WHITE), tinted(merged(*wings), FEATHERS), tinted(tail, NAVY),
                  tinted(merged(beak, *legs), BEAK))
    glb.thing('Resting Gull', ('Gull', gull, HAIR), translation=place, rotation=about(UP, heading))


def gulls(glb):
    for number, gull in enumerate(FLYING, 1):
        flying_gull(glb, 'Gull %d' % number, *gull)
    resting_gull(glb, *RESTING)
