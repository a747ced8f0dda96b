"""Vectors of three numbers, as tuples, and quaternions as glTF has them."""

import math

UP = (0, 1, 0)


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
    """0 at `low`, 1 at `high`, an S between."""
    t = min(1.0, max(0.0, (x - low) / (high - low)))
    return t * t * (3 - 2 * t)


def turned(v, degrees):
    """About the y axis, from z towards x."""
    c, s = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    return (c * v[0] + s * v[2], v[1], -s * v[0] + c * v[2])


def about(axis, degrees):
    """The quaternion that turns about a unit axis."""
    half = math.radians(degrees) / 2
    return [*mul(axis, math.sin(half)), math.cos(half)]


def product(a, b):
    """The quaternion that turns by b, then by a."""
    v = add(add(mul(b[:3], a[3]), mul(a[:3], b[3])), cross(a, b))
    return [*v, a[3] * b[3] - dot(a, b)]


def aimed(direction):
    """The quaternion that turns -z to `direction`, upright."""
    x, y, z = unit(mul(direction, -1))
    yaw, pitch = math.degrees(math.atan2(x, z)), -math.degrees(math.asin(y))
    return product(about(UP, yaw), about((1, 0, 0), pitch))
