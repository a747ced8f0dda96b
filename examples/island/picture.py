"""The camera of the picture, and what lies where in it.

World: y up, x to the right, z towards the viewer, metres, water at y = 0.
Places in the picture are shares of its width from the left and of its height
from the top.
"""

import math

EYE = (0.0, 3.4, 19.0)
HEIGHT = math.radians(28)  # of the field of view
PITCH = math.radians(3.4)  # upwards
ASPECT = 16 / 9
AHEAD = (0.0, math.sin(PITCH), -math.cos(PITCH))


def ray(u, v):
    """Along a place in the picture, as long as makes z -1."""
    reach = math.tan(HEIGHT / 2)
    x, y = (2 * u - 1) * reach * ASPECT, (1 - 2 * v) * reach
    c, s = math.cos(PITCH), math.sin(PITCH)
    depth = c - y * s
    return (x / depth, (y * c + s) / depth, -1.0)


def on_water(u, v, height=0.0):
    """The place on the water that shows there."""
    x, y, _ = ray(u, v)
    far = (EYE[1] - height) / -y
    return (EYE[0] + far * x, height, EYE[2] - far)


def at_distance(u, v, far):
    """The place that shows there, `far` away in z."""
    x, y, _ = ray(u, v)
    return (EYE[0] + far * x, EYE[1] + far * y, EYE[2] - far)
