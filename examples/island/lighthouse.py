"""The lighthouse, its lamp and the light of it."""

import math

from .land import on_ground
from .motion import PERIOD, clock
from .palette import BROAD, CREAM, DEEP_RED, FINE, GLOW, HAZE, INK, LAMP, NAVY, PALE_GLOW, RED, STONE, WINDOW
from .picture import EYE
from .shapes import Shape, fan, grid_faces, lathe, merged, placed, sheet, sphere, tinted, tube
from .vectors import UP, about, sub, unit

PLACE = (4.25, -8.7)
HEIGHT = 6.2              # of the tower, up to the gallery
FLOOR = HEIGHT + 0.14     # of the gallery
DOME = HEIGHT + 1.06      # where it begins
LAMP_HEIGHT = HEIGHT + 0.72

WINDOWS = ((-16, 2.1), (16, 3.4), (-16, 4.65))  # angle from the viewer's side, height of the foot
DOOR_ANGLE = -38


def radius_at(height):
    """Of the tower: wide at the foot, narrowing in a slight curve."""
    return 0.66 + 0.5 * (1 - height / HEIGHT) ** 1.7


def tower():
    bands = []
    for k in range(5):
        heights = [HEIGHT * (k + j / 4) / 5 for j in range(5)]
        band = lathe([(radius_at(y), y) for y in heights], 64, is_round=True)
        bands.append(tinted(band, CREAM if k % 2 else RED))
    plinth = lathe([(1.42, -0.6), (1.42, 0.06), (1.3, 0.1), (1.15, 0.1)], 64)
    return merged(*bands, tinted(plinth, STONE))


def arch(width, height, angle, foot, out):
    """A window or a door with a round top, laid on the wall of the tower, `out` before it."""
    half = width / 2
    def at(u, v):
        x = -half * math.cos(math.pi * u)
        y = foot + v * (height - half + math.sqrt(max(0.0, half * half - x * x)))
        r = radius_at(y) + out
        a = math.radians(angle) + x / r
        return (r * math.sin(a), y, r * math.cos(a))
    return sheet(at, 5, 15)


def openings():
    frames = [tinted(arch(0.42, 0.66, angle, foot - 0.07, 0.02), NAVY) for angle, foot in WINDOWS]
    door = [tinted(arch(0.84, 1.2, DOOR_ANGLE, 0.1, 0.02), CREAM), tinted(arch(0.62, 1.06, DOOR_ANGLE, 0.1, 0.035), NAVY)]
    return merged(*frames, *door)


def panes():
    return merged(*[tinted(arch(0.28, 0.5, angle, foot, 0.045), WINDOW) for angle, foot in WINDOWS])


def gallery():
    floor = lathe([(0.66, HEIGHT - 0.16), (1.0, HEIGHT + 0.02), (1.0, FLOOR), (0.3, FLOOR)], 64)
    room = lathe([(0.56, FLOOR), (0.56, HEIGHT + 0.36), (0.46, HEIGHT + 0.4)], 48)
    eaves = lathe([(0.3, DOME), (0.7, DOME - 0.02), (0.7, DOME + 0.05), (0.6, DOME + 0.07)], 48)
    return merged(tinted(floor, CREAM), tinted(room, RED), tinted(eaves, DEEP_RED))


def iron():
    """Railing, the bars of the lantern, and the rod on the dome."""
    def upright(r, low, high, distance, a):
        return placed(lathe([(r, low), (r, high)], 8), (distance * math.sin(a), 0, distance * math.cos(a)))
    circle = [2 * math.pi * k / 64 for k in range(65)]
    rails = [tube([(0.95 * math.sin(a), y, 0.95 * math.cos(a)) for a in circle], 0.018, 6)
             for y in (FLOOR + 0.2, FLOOR + 0.4)]
    posts = [upright(0.022, FLOOR, FLOOR + 0.42, 0.95, 2 * math.pi * k / 16) for k in range(16)]
    bars = [upright(0.026, FLOOR + 0.2, FLOOR + 1.0, 0.47, 2 * math.pi * (k + 0.3) / 8) for k in range(8)]
    rod = lathe([(0.028, DOME + 0.78), (0.016, DOME + 1.38), (0.0, DOME + 1.38)], 10)
    return tinted(merged(*rails, *posts, *bars, rod), INK)


def dome():
    quarter = [math.pi / 2 * k / 14 for k in range(15)]
    profile = [(0.62 * math.cos(a) ** 0.9, DOME + 0.07 + 0.66 * math.sin(a)) for a in quarter[:-1]]
    cap = lathe([*profile, (0.0, DOME + 0.73)], 56, is_round=True)
    return merged(tinted(cap, RED), tinted(placed(sphere(0.1, 20, 10), (0, DOME + 0.8, 0)), NAVY))


# --- light ----------------------------------------------------------------------------

# From gold through white to the blue of the air: gold over blue sky would be grey.
# Radius in metres, colour, and how much of what lies behind each disc covers.
HALO = ((1.12, GLOW, 0.55), (1.7, PALE_GLOW, 0.24), (2.4, HAZE, 0.17), (3.3, HAZE, 0.11), (4.4, HAZE, 0.06))
# Metres from the lamp where a piece of the beam begins and ends, colour, how much it covers.
BEAM = ((0.4, 3.4, GLOW, 0.55), (3.4, 6.2, PALE_GLOW, 0.36), (6.2, 10.2, HAZE, 0.27), (10.2, 18.0, HAZE, 0.15))
BEAM_HEADING = 102   # degrees
SPREAD = 0.085       # of its radius, a metre


def halo():
    """Discs behind the lantern, the larger the farther."""
    circle = [2 * math.pi * k / 72 for k in range(72)]
    def disc(radius, back):
        return fan([(radius * math.cos(a), radius * math.sin(a), -back) for a in circle], (0, 0, 1))
    return merged(*[tinted(disc(radius, 0.9 + 0.05 * k), color, share)
                    for k, (radius, color, share) in enumerate(HALO)])


def beam_piece(start, end, color, share):
    """A cone along -z without ends, which looks even from all sides."""
    segments = 40
    circle = [2 * math.pi * k / segments for k in range(segments + 1)]
    points = [((0.2 + SPREAD * z) * math.cos(a), (0.2 + SPREAD * z) * math.sin(a), -z)
              for z in (end, start) for a in circle]
    normals = [(math.cos(a), math.sin(a), 0) for _ in (end, start) for a in circle]
    return tinted(Shape(points, [face[::-1] for face in grid_faces(2, segments + 1)], normals), color, share)


def lighthouse(glb):
    base = on_ground(*PLACE, -0.05)
    node = glb.thing('Lighthouse', ('Tower', merged(tower(), openings()), BROAD), ('Window Light', panes()),
                     ('Gallery', gallery(), FINE), ('Iron', iron()), ('Dome', dome(), BROAD), translation=base)
    glass = lathe([(0.44, HEIGHT + 0.4), (0.44, HEIGHT + 1.04)], 40)
    lens = lathe([(0.44, -0.17), (0.457, -0.1), (0.457, 0.1), (0.44, 0.17)], 40)
    at_lamp = {'parent': node, 'translation': [0, LAMP_HEIGHT, 0]}
    glb.thing('Lantern', ('Lamp', tinted(glass, GLOW)), parent=node)
    glb.thing('Lamp', ('Lamp', tinted(lens, LAMP)), **at_lamp)
    beam = merged(*[beam_piece(*piece) for piece in BEAM])
    node = glb.thing('Beam', ('Beam', beam), rotation=about(UP, BEAM_HEADING), **at_lamp)
    eighths = range(9)  # of the loop, and of a turn
    glb.animate_straight(node, 'rotation', [PERIOD * k / 8 for k in eighths],
                         [about(UP, BEAM_HEADING - 45 * k) for k in eighths])
    viewer = unit(sub(EYE, base))
    bearing = math.degrees(math.atan2(viewer[0], viewer[2]))
    node = glb.thing('Halo', ('Halo', halo()), rotation=about(UP, bearing), **at_lamp)
    def glare(t):
        """1 while the beam points at the viewer, 0 while it points elsewhere."""
        off = math.radians(BEAM_HEADING - 180 - bearing) - clock(t)
        return math.exp(5 * (math.cos(off) - 1))
    glb.animate(node, 'scale', lambda t: [1 + 0.16 * (glare(t) - glare(0))] * 3, 24)
