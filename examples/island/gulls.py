"""Gulls. They look along -z; a wing is a node that turns at the shoulder.

A gull flies at an even speed through air that moves evenly as well. It leans into its turns
as far as speed and turn ask for."""

import math

from .motion import PERIOD, clock, swing
from .palette import BEAK, FEATHERS, HAIR, NAVY, WHITE
from .picture import at_distance
from .shapes import laid, lathe, merged, mirrored, placed, sheet, sphere, thickened, tinted
from .vectors import UP, about, add, mul, product, turned

# Place in the picture and distance, heading, roll, how high the wings are, size.
FLYING = ((0.30, 0.245, 20, 62, 14, 0.22, 1.0), (0.385, 0.175, 16.5, 75, -16, 0.12, 0.68),
          (0.235, 0.155, 27, 60, 10, 0.2, 0.9), (0.90, 0.235, 26, -60, -12, 0.2, 0.9),
          (0.46, 0.30, 34, 70, 8, 0.16, 0.9))
# Of each: metres a second, whether it circles or hangs in the wind, beats of the wings to a loop, how wide
# they are in degrees, and the clock when they are widest.
FLIGHTS = ((2.6, False, 6, 26, 4.5), (2.0, True, 8, 24, 0.6), (2.4, False, 5, 24, 0.9), (1.7, True, 6, 26, 1.6),
           (2.4, False, 6, 24, 5.4))
GRAVITY = 9.81
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


class Flight:
    """How a gull flies that begins the loop at a place, heading and roll in degrees."""

    def __init__(self, place, heading, roll, speed, circles):
        self.place, self.heading, self.speed = place, heading, speed
        turning = GRAVITY * math.tan(math.radians(roll)) / speed * PERIOD / (2 * math.pi)  # at first
        if circles:  # an oval: round the ends it turns faster
            way = math.copysign(1, roll)
            self.turn = lambda t: way * clock(t) + (turning - way) * math.sin(clock(t, 2)) / 2
        else:        # to and fro across the wind
            self.turn = lambda t: turning * math.sin(clock(t))
        self.wind = mul(self.flown(PERIOD), 1 / PERIOD)

    def flown(self, t):
        """The way through the air since the loop began, by Simpson's rule."""
        pieces = 96
        total = (0, 0, 0)
        for k in range(pieces + 1):
            weight = 1 if k in (0, pieces) else 4 if k % 2 else 2
            ahead = turned((0, 0, -self.speed), self.heading + math.degrees(self.turn(t * k / pieces)))
            total = add(total, mul(ahead, weight))
        return mul(total, t / (3 * pieces))

    def place_at(self, t):
        return add(self.place, add(self.flown(t), mul(self.wind, -t)))

    def turn_at(self, t, step=1e-3):
        rate = (self.turn(t + step) - self.turn(t - step)) / (2 * step)
        roll = math.degrees(math.atan(self.speed * rate / GRAVITY))
        return product(about(UP, self.heading + math.degrees(self.turn(t))), about((0, 0, 1), roll))


def flying_gull(glb, name, place, heading, roll, lift, size, speed, circles, beats, width, widest):
    node = glb.thing(name, ('Gull', body(), HAIR / size), translation=place,
                     rotation=product(about(UP, heading), about((0, 0, 1), roll)), scale=[size] * 3)
    flight = Flight(place, heading, roll, speed, circles)
    def beat(t):
        """From -1 to 1."""
        return math.sin(clock(t, beats)) * (0.58 + 0.42 * math.cos(clock(t) - widest))
    def rise(t):
        """Wide beats lift it; it falls a little as the wings rise."""
        return 0.2 * swing(t, -widest - math.pi / 2) - 0.04 * beat(t)
    glb.animate(node, 'translation', lambda t: add(flight.place_at(t), (0, rise(t), 0)), 4 * beats)
    glb.animate(node, 'rotation', flight.turn_at)
    wing = right_wing(lift)
    for side, word, shape in ((1, 'Right', wing), (-1, 'Left', mirrored(wing))):
        shoulder = glb.thing('%s %s Wing' % (name, word), ('Gull', shape, HAIR / size), parent=node,
                             translation=[side * 0.035, 0.03, 0])
        glb.animate(shoulder, 'rotation', lambda t, side=side: about((0, 0, 1), side * width * beat(t)), 8 * beats)


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
    node = glb.thing('Resting Gull', ('Gull', gull, HAIR), translation=place, rotation=about(UP, heading))
    def hop(t):
        """Twice in the loop, with a turn of its body each time."""
        return math.sin(clock(t)) ** 6
    glb.animate(node, 'translation', lambda t: add(place, (0, 0.09 * hop(t), 0)), 32)
    glb.animate(node, 'rotation', lambda t: about(UP, heading + 14 * swing(t)), 32)


def gulls(glb):
    for number, ((u, v, far, *pose), flight) in enumerate(zip(FLYING, FLIGHTS), 1):
        flying_gull(glb, 'Gull %d' % number, at_distance(u, v, far), *pose, *flight)
    resting_gull(glb, *RESTING)
