"""What grows on the island."""

import math
import random

from .land import at_shore, lawn_end, on_ground
from .motion import swing, waving
from .palette import AMBER, BROAD, CORAL, CREAM, FINE, HAIR, LEAF, MOSS, PINE, WHITE, WOOD
from .shapes import Shape, lathe, leaning, merged, placed, smoothed, sphere, tinted
from .vectors import about

# Middle and radius of the balls of a crown.
PINE_CROWN = ((0.0, 1.0, 0.0, 0.5), (0.42, 1.12, 0.1, 0.4), (-0.4, 0.9, 0.12, 0.36),
              (0.3, 1.42, -0.05, 0.4), (0.75, 1.3, 0.0, 0.3), (-0.02, 0.86, 0.32, 0.34))
BUSH_CROWN = ((0.0, 0.18, 0.0, 0.3), (0.28, 0.14, 0.06, 0.22), (-0.26, 0.13, 0.04, 0.24), (0.05, 0.12, 0.2, 0.2))

# Size, x and z.
PINES = ((1.75, 2.3, -9.9), (1.3, 6.5, -9.7), (0.95, 7.45, -9.2))
BUSHES = ((1.0, 2.5, -7.2), (0.7, 2.1, -6.95), (1.1, 5.75, -7.3), (0.8, 5.2, -6.9), (1.0, -0.95, -8.1))


def crown(balls, color):
    return tinted(merged(*[placed(sphere(r), (x, y, z), 0, (1, 0.86, 1)) for x, y, z, r in balls]), color)


def trees(glb):
    trunk = tinted(leaning(lathe([(0.1, -0.2), (0.055, 1.0)], 14), (0.12, 0)), WOOD)
    pine = glb.mesh('Pine', ('Wood', trunk, FINE), ('Leaves', crown(PINE_CROWN, PINE), 0.8 * BROAD))
    bush = glb.mesh('Bush', ('Leaves', crown(BUSH_CROWN, LEAF), BROAD))
    for name, mesh, places in (('Pine', pine, PINES), ('Bush', bush, BUSHES)):
        for number, (size, x, z) in enumerate(places, 1):
            node = glb.node('%s %d' % (name, number), mesh=mesh, translation=on_ground(x, z), scale=[size] * 3)
            glb.animate(node, 'rotation', lambda t, x=x: about((0, 0, 1), -0.8 * swing(t, 1.5 - 0.5 * x)))


def blade(foot, lean, height, half):
    """Of grass: broad below, bent to the side."""
    knee = (foot + 0.25 * lean, 0.55 * height)
    points = [(foot - half, -0.05, 0), (foot + half, -0.05, 0), (knee[0] + 0.8 * half, knee[1], 0.02),
              (foot + lean, height, 0), (knee[0] - 0.8 * half, knee[1], 0.02)]
    return Shape(points, [(0, 1, 2), (0, 2, 4), (4, 2, 3)], [(0, 0.6, 0.8)] * 5)


def tuft(x, z, size, seed, sway):
    rng = random.Random(seed)
    blades = []
    for k in range(-2, 3):
        lean = (0.22 * k + rng.uniform(-0.08, 0.08) + 0.09 * sway(1.5 - 0.5 * x + 0.4 * k)) * size
        height = size * (1.15 - 0.18 * abs(k)) * rng.uniform(0.85, 1.1)
        blades.append(blade(0.16 * k * size, lean, height, 0.075 * size))
    return placed(tinted(merged(*blades), MOSS), on_ground(x, z), rng.uniform(-25, 25))


def lens(radii, depth):
    """A disc with an uneven rim, swelling to the front and to the back."""
    count = len(radii)
    rim = [(r * math.sin(2 * math.pi * k / count), r * math.cos(2 * math.pi * k / count), 0)
           for k, r in enumerate(radii)]
    sides = [(k, (k + 1) % count) for k in range(count)]
    return smoothed([*rim, (0, 0, depth), (0, 0, -depth)],
                    [(b, a, count) for a, b in sides] + [(a, b, count + 1) for a, b in sides])


def flower(x, z, color, seed):
    """Five petals on a stalk."""
    rng = random.Random(seed)
    height = rng.uniform(0.12, 0.22)
    stalk = lathe([(0.012, -0.03), (0.008, height)], 5)
    lobes = [0.056 + 0.028 * abs(math.sin(math.pi * k / 4)) ** 0.6 for k in range(20)]
    petals = placed(lens(lobes, 0.02), (0, height, 0))
    heart = placed(lens([0.034] * 8, 0.055), (0, height, 0))
    whole = merged(tinted(stalk, MOSS), tinted(petals, color), tinted(heart, CREAM if color == AMBER else AMBER))
    return placed(whole, on_ground(x, z), rng.uniform(-20, 20))


def meadow(glb):
    rng = random.Random(12)
    tufts, flowers = [], []
    while len(tufts) < 26:
        angle, share = rng.uniform(-2.2, 1.9), rng.uniform(0.35, 0.95)
        if share < lawn_end(angle) - 0.03:
            x, _, z = at_shore(angle, share)
            tufts.append((x, z, rng.uniform(0.16, 0.26), len(tufts)))
    while len(flowers) < 44:
        angle, share = rng.choice((-1.1, 0.35, 0.55, 1.2)) + rng.gauss(0, 0.13), rng.uniform(0.55, 0.93)
        if share < lawn_end(angle) - 0.05:
            x, _, z = at_shore(angle, share)
            flowers.append(flower(x, z, rng.choice((WHITE, CORAL, AMBER, WHITE)), len(flowers)))
    glb.waving('Tufts', ('Blades', waving(lambda sway: merged(*[tuft(*place, sway) for place in tufts]))))
    glb.thing('Flowers', ('Flowers', merged(*flowers), HAIR))


def plants(glb):
    trees(glb)
    meadow(glb)
