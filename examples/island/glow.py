"""The light of the lamp: a halo behind the lantern, and two beams."""

import math

from .buildings import LAMP_HEIGHT
from .palette import GLOW
from .shapes import Shape, fan, merged, placed, tinted
from .vectors import about_axis, add, mul, sub, unit
from .picture import EYE

# Radius in metres and how much each disc covers.
HALO = ((0.95, 0.34), (1.6, 0.22), (2.5, 0.14), (3.7, 0.09))
# How far along the beam a piece begins and ends, and how much it covers.
BEAM = ((0.4, 4.2, 0.36), (4.2, 9.0, 0.24), (9.0, 18.0, 0.13))
SPREAD = 0.085  # of the beam's radius a metre
BEAM_HEADING = -78  # degrees from the viewer's side towards the right


def disc(radius, segments=72):
    return fan([(radius * math.cos(a), radius * math.sin(a), 0) for a in
                [2 * math.pi * k / segments for k in range(segments)]], (0, 0, 1))


def halo(toward):
    """Discs behind the lantern, facing the viewer; the larger the farther."""
    parts = [placed(tinted(disc(radius), GLOW, alpha), mul(toward, -0.9 - 0.05 * k))
             for k, (radius, alpha) in enumerate(HALO)]
    return merged(*parts)


def cone(start, end, alpha):
    """A piece of the beam along -z."""
    segments = 40
    points = []
    for z in (start, end):
        r = 0.2 + SPREAD * z
        points += [(r * math.cos(2 * math.pi * k / segments), r * math.sin(2 * math.pi * k / segments), -z)
                   for k in range(segments)]
    faces = []
    for k in range(segments):
        n = (k + 1) % segments
        faces += [(k, k + segments, n + segments), (k, n + segments, n)]
    faces = [f[::-1] for f in faces]
    return tinted(Shape(points, faces, [unit((x, y, 0)) for x, y, _ in points]), GLOW, alpha)


def glow(glb, tower, lamp):
    toward = unit(sub(EYE, lamp))
    turn = math.degrees(math.atan2(toward[0], toward[2]))
    glb.thing('Halo', ('Halo', halo((0, 0, 1))), parent=tower, translation=[0, LAMP_HEIGHT, 0],
              rotation=about_axis((0, 1, 0), turn))
    glb.thing('Beam', ('Beam', merged(*[cone(*piece) for piece in BEAM])), parent=tower,
              translation=[0, LAMP_HEIGHT, 0], rotation=about_axis((0, 1, 0), 180 + BEAM_HEADING))
