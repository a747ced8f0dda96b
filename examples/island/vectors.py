"""Vectors of three numbers, as tuples."""

import math


def add(a, b): return (a[0] + b[0], a[1] + b[1], a[2] + b[2])
def sub(a, b): return (a[0] - b[0], a[1] - b[1], a[2] - b[2])
def mul(a, s): return (a[0] * s, a[1] * s, a[2] * s)
def dot(a, b): return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]
def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])
def length(a): return math.sqrt(dot(a, a))
def mix(a, b, t): return tuple(x + (y - x) * t for x, y in zip(a, b))


def unit(a):
    size = length(a)
    return mul(a, 1.0 / size) if size > 1e-12 else (0.0, 0.0, 0.0)


def smooth(low, high, x):
    """0 up to `low`, 1 from `high` on, an S between."""
    t = min(1.0, max(0.0, (x - low) / (high - low)))
    return t * t * (3 - 2 * t)


def turned(v, degrees):
    """About the y axis, from z towards x."""
    c, s = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    return (c * v[0] + s * v[2], v[1], -s * v[0] + c * v[2])


def about_axis(axis, degrees):
    """The quaternion that turns about a unit axis."""
    half = math.radians(degrees) / 2
    return [*mul(axis, math.sin(half)), math.cos(half)]


def aimed(direction):
    """The quaternion that turns -z to `direction`, upright."""
    z = unit(mul(direction, -1))
    x = unit(cross((0, 1, 0) if abs(z[1]) < 0.999 else (0, 0, -1), z))
    y = cross(z, x)
    # Roll, pitch and yaw: the yaw first turns z, the pitch then lifts it.
    yaw = math.atan2(z[0], z[2]) if abs(z[1]) < 0.999 else math.atan2(-x[2], x[0])
    pitch = -math.asin(max(-1.0, min(1.0, z[1])))
    cy, sy = math.cos(yaw / 2), math.sin(yaw / 2)
    cp, sp = math.cos(pitch / 2), math.sin(pitch / 2)
    return [cy * sp, sy * cp, -sy * sp, cy * cp]
