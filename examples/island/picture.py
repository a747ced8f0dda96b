"""The camera of the picture, and what lies where in it.

World: y up, x to the right, z towards the viewer, metres, water at y = 0. Places in
the picture are shares of its width from the left and of its height from the top.
"""

import math

EYE = (0.0, 3.4, 19.0)
HEIGHT = math.radians(28)  # of the field of view
PITCH = math.radians(3.4)  # upwards
ASPECT = 16 / 9
AHEAD = (0.0, math.sin(PITCH), -math.cos(PITCH))
HORIZON = 0.5 + math.tan(PITCH) / math.tan(HEIGHT / 2) / 2


def at_distance(u, v, far):
    """The place that shows at (u, v), `far` away along z."""
    reach = math.tan(HEIGHT / 2)
    x, y = (2 * u - 1) * reach * ASPECT, (1 - 2 * v) * reach
    c, s = math.cos(PITCH), math.sin(PITCH)
    depth = c - y * s
    return (EYE[0] + far * x / depth, EYE[1] + far * (y * c + s) / depth, EYE[2] - far)


def on_water(u, v, height=0.0):
    """The place on the water, or at some height, that shows at (u, v)."""
    x, y, _ = at_distance(u, v, 1.0)
    far = (EYE[1] - height) / (EYE[1] - y)
    return (EYE[0] + far * (x - EYE[0]), height, EYE[2] - far)
