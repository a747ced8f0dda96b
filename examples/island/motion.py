"""How the scene moves: one loop, whose first moment is the still picture.

Everything swings in whole cycles of the loop, so that its end leads into its beginning.
Turns of the clock are angles, in radians.
"""

import math
from typing import NamedTuple

from .shapes import Shape
from .vectors import sub

PERIOD = 4.0  # seconds


def clock(t, cycles=1):
    """How far `cycles` to a loop have come at a time."""
    return 2 * math.pi * cycles * t / PERIOD


def swing(t, phase=0.0, cycles=1):
    """A swing that is 0 when the loop begins, between -2 and 2."""
    return math.cos(clock(t, cycles) + phase) - math.cos(phase)


def swell(x, z):
    """The phase of the swell at a place: it comes from the left and from the open sea, and
    its crest is under the boat as the loop begins."""
    return -2 * math.pi * (0.8 * (x + 6.9) + 0.6 * (z + 6.3)) / 12


# --- surfaces that wave --------------------------------------------------------------

class Sway(NamedTuple):
    """Gives `swing` of any phase at one moment, which is told by two weights: all that
    the shapes of a surface which waves can be mixed from."""
    cosine: float = 0.0
    sine: float = 0.0

    def __call__(self, phase):
        return self.cosine * math.cos(phase) - self.sine * math.sin(phase)


def weights(t, cycles=1):
    """Of the two shapes of a surface which waves."""
    return [math.cos(clock(t, cycles)) - 1, math.sin(clock(t, cycles))]


def waving(build, bends_normals=False) -> Shape:
    """The shape build(Sway()) and how far its points move for either weight; where light
    plays on it, its normals too."""
    rest = build(Sway())
    ends = [build(Sway(cosine=1)), build(Sway(sine=1))]
    def moves(of): return [[sub(b, a) for a, b in zip(of(rest), of(end))] for end in ends]
    return rest._replace(moves=moves(lambda shape: shape.points),
                         bends=moves(lambda shape: shape.normals) if bends_normals else None)
