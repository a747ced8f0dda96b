"""A fish that leaps once in a loop. When the loop begins it is under water."""

import math

from .motion import PERIOD
from .palette import AMBER, CORAL, CREAM, FOAM, HAIR, INK
from .picture import on_water
from .shapes import closed_strip, fan, merged, placed, sphere, thickened, tinted
from .vectors import UP, about, add

LEAP = on_water(0.4, 0.965)  # its middle
BEGIN, END = 1.5, 2.3        # seconds, from water to water
SPEED, GRAVITY = 1.5, 7.0    # along x; a little slower than on earth
DEPTH, SIZE = 0.7, 1.25      # it waits below, and swims back there


def shape():
    """Its head is at +x."""
    body = placed(sphere(1.0, 20, 12), scale=(0.21, 0.085, 0.06))
    belly = placed(sphere(1.0, 16, 10), (0.02, -0.02, 0), scale=(0.16, 0.068, 0.056))
    eyes = [placed(sphere(0.016, 10, 6), (0.14, 0.02, side * 0.045)) for side in (-1, 1)]
    def fin(*corners): return thickened(fan([(x, y, 0) for x, y in corners], (0, 0, 1)), 0.02)
    tail = fin((-0.17, 0.0), (-0.33, 0.11), (-0.28, 0.0), (-0.33, -0.11))
    back = fin((0.07, 0.07), (-0.06, 0.15), (-0.09, 0.06))
    return merged(tinted(body, CORAL), tinted(belly, CREAM), tinted(merged(tail, back), AMBER),
                  tinted(merged(*eyes), INK))


def way_at(t):
    """Its place, and how steeply it rises, in degrees."""
    middle = (BEGIN + END) / 2
    late = t - middle
    height = GRAVITY / 2 * (((END - BEGIN) / 2) ** 2 - late * late)
    return add(LEAP, (SPEED * late, height, 0)), math.degrees(math.atan2(-GRAVITY * late, SPEED))


def fish(glb):
    under = add(LEAP, (0, -DEPTH, 0))
    node = glb.thing('Fish', ('Buoy', shape(), HAIR / SIZE), translation=under, scale=[SIZE] * 3)
    leap = [BEGIN - 0.2 + k / 24 for k in range(round(24 * (END - BEGIN + 0.4)) + 1)]
    ways = [way_at(t) for t in leap]
    glb.animate_straight(node, 'translation', [0, BEGIN - 0.5, *leap, END + 0.5, PERIOD],
                         [under, under, *[place for place, _ in ways], under, under])
    glb.animate_straight(node, 'rotation', [0, *leap, PERIOD],
                         [about((0, 0, 1), angle) for angle in (0, *[steep for _, steep in ways], 0)])
    for number, (start, side) in enumerate(((BEGIN, -1), (END, 1)), 1):
        splash(glb, 'Splash %d' % number, start, add(LEAP, (side * SPEED * (END - BEGIN) / 2, 0, 0)))


def splash(glb, name, start, place):
    """Rings that widen on the water, and are below it else."""
    circle = [2 * math.pi * k / 40 for k in range(40)]
    def ring(inner, outer):
        return closed_strip(*[[(r * math.sin(a), 0, r * math.cos(a)) for a in circle] for r in (inner, outer)], UP)
    rings = tinted(merged(ring(0.17, 0.24), ring(0.42, 0.46)), FOAM)
    below, above = add(place, (0, -0.05, 0)), add(place, (0, 0.013, 0))
    last = start + 0.75
    node = glb.thing(name, ('Foam', rings), translation=below, scale=[0.2, 1, 0.2])
    glb.animate_straight(node, 'translation', [0, start - 0.02, start, last, last + 0.02, PERIOD],
                         [below, below, above, above, below, below])
    glb.animate_straight(node, 'scale', [0, start, start + 0.25, last, last + 0.1, PERIOD],
                         [[size, 1, size] for size in (0.2, 0.2, 0.7, 1.1, 0.2, 0.2)])
