"""Sky, hills, clouds and gulls."""

import math
import random

from .palette import BROAD, CREAM, FINE, NAVY, WHITE
from .picture import ASPECT, EYE, at_distance
from .shapes import Shape, lathe, merged, placed, sheet, sphere, strip, thickened, tinted
from .vectors import about_axis, add, mix, mul, sub

TO_VIEWER = (0, 0, 1)

# Share of the picture's height where a band ends, and its colour; from the top.
SKY_BANDS = ((0.05, '#27467a'), (0.1, '#2c4f83'), (0.15, '#33598c'), (0.2, '#3c6695'), (0.245, '#48749d'), (0.29, '#5885a6'),
             (0.335, '#6d97ae'), (0.375, '#87aab2'), (0.415, '#a3bcb3'), (0.45, '#bfc9b2'), (0.485, '#d9d3af'),
             (0.52, '#ecd8a8'), (0.555, '#f7d09c'), (0.59, '#fbc08d'), (0.70, '#fbab80'))


def backdrop(far=2400):
    bands, top = [], -0.2
    columns = [i / 60 * 1.6 - 0.3 for i in range(61)]
    def border(u, v):
        return v + 0.006 * math.sin(7 * u + 40 * v) if v > 0 else v
    for end, color in SKY_BANDS:
        upper = [at_distance(u, border(u, top), far) for u in columns]
        lower = [at_distance(u, border(u, end), far) for u in columns]
        bands.append(tinted(strip(lower, upper, TO_VIEWER), color))
        top = end
    return merged(*bands)


def ridge(peaks, foot, far, base, lit, seed):
    """A range of hills seen from the side: peaks are (share across, height in shares)."""
    rng = random.Random(seed)
    def height(u):
        for (u0, h0), (u1, h1) in zip(peaks, peaks[1:]):
            if u0 <= u <= u1:
                t = (u - u0) / (u1 - u0)
                return h0 + (h1 - h0) * t + 0.004 * math.sin(95 * u + seed) * math.sin(math.pi * t)
        return 0.0
    us = [peaks[0][0] + (peaks[-1][0] - peaks[0][0]) * i / 160 for i in range(161)]
    silhouette = strip([at_distance(u, foot, far) for u in us],
                       [at_distance(u, foot - height(u), far) for u in us], TO_VIEWER)
    faces = []
    for (u0, h0), (u1, h1), (u2, h2) in zip(peaks, peaks[1:], peaks[2:]):
        if h1 > h0 and h1 > h2:
            faces.append(lit_flank(u0, u1, height, foot, far - 1, rng))
    return merged(tinted(silhouette, base), *[tinted(f, lit) for f in faces])


def lit_flank(start, peak, height, foot, far, rng):
    """The side of a peak that the sun reaches: along the ridge, back in a zigzag."""
    steps = 24
    upper, lower = [], []
    for k in range(steps + 1):
        t = k / steps
        u = start + (peak - start) * (0.12 + 0.88 * t)
        zig = 0.17 * abs((k % 6) / 3 - 1) * (1 - t)
        depth = (0.18 + zig + 0.5 * t * (1 - t)) * height(u) * (1 - t ** 6)
        upper.append(at_distance(u, foot - height(u), far))
        lower.append(at_distance(u + 0.01 * (1 - t), foot - height(u) + depth, far))
    return strip(lower, upper, TO_VIEWER)


# Distance, colour, colour in the sun, number, and the peaks.
HILLS = (
    (1500, '#d8b3a4', '#e9c0a4', 1, ((-0.1, 0.02), (0.05, 0.05), (0.16, 0.03), (0.30, 0.065), (0.44, 0.025),
                                     (0.56, 0.045), (0.70, 0.02), (0.86, 0.06), (1.1, 0.02))),
    (1000, '#a99aac', '#c9a9a6', 2, ((-0.1, 0.07), (0.03, 0.095), (0.12, 0.05), (0.2, 0.06), (0.34, 0.012),
                                     (0.40, 0.0))),
    (900, '#9a91aa', '#bda2a4', 3, ((0.78, 0.0), (0.86, 0.03), (0.94, 0.075), (1.0, 0.055), (1.1, 0.1))),
)


def hills(glb):
    for number, (far, base, lit, seed, peaks) in enumerate(HILLS, 1):
        glb.thing('Hills %d' % number, ('Hills', ridge(peaks, HORIZON + 0.004, far, base, lit, seed)))


HORIZON = 0.5 + math.tan(math.radians(3.4)) / math.tan(math.radians(14)) / 2

# Place of the middle of the foot, width in shares, height in shares, distance, number, colours.
WARM = ('#b3a6c4', '#f4c4ac', '#fff0d6')
CLOUDS = ((0.12, 0.475, 0.34, 0.17, 1300, 3, WARM), (0.45, 0.42, 0.2, 0.075, 1250, 5, WARM),
          (0.93, 0.40, 0.26, 0.15, 1350, 8, WARM))

# Place of the middle, width, height and colour.
STREAKS = ((0.82, 0.075, 0.22, 0.010, '#5d83ab'), (0.88, 0.093, 0.14, 0.008, '#6f93b4'), (0.76, 0.099, 0.08, 0.006, '#5d83ab'),
           (0.20, 0.055, 0.2, 0.009, '#4f78a6'), (0.13, 0.07, 0.12, 0.007, '#5d83ab'), (0.42, 0.335, 0.2, 0.009, '#cfd0bc'),
           (0.36, 0.352, 0.1, 0.007, '#e6d6b6'), (0.60, 0.46, 0.16, 0.008, '#fbe3b4'), (0.95, 0.475, 0.2, 0.009, '#fbe3b4'),
           (0.30, 0.53, 0.24, 0.008, '#fde2b0'))


def streak(u, v, width, height, color, far=1200):
    ts = [k / 24 * 2 - 1 for k in range(25)]
    half = [height / 2 * (1 - t * t) ** 0.8 for t in ts]
    return tinted(strip([at_distance(u + width / 2 * t, v + h * 0.6, far) for t, h in zip(ts, half)],
                        [at_distance(u + width / 2 * t, v - h, far) for t, h in zip(ts, half)], TO_VIEWER), color)


def cloud(u, v, width, height, far, seed, colors):
    """Three layers of one heap of discs: the shade, the half-tone and the light, each
    smaller and moved towards the sun."""
    rng = random.Random(seed)
    discs = []
    for k in range(11):
        t = (k + 0.5) / 11 * 2 - 1
        size = (0.55 + 0.45 * rng.random()) * (1 - 0.75 * abs(t) ** 1.4)
        discs.append((t * 0.82, max(0.14, size * 0.52) * 1.0, max(0.16, size * 0.5)))
    def top(x, shrink):
        best = 0.16 * shrink
        for cx, cy, r in discs:
            r *= shrink
            # The heap is `width` by `height`; discs are round in the picture.
            dx = (x - cx) * width * ASPECT / height / 2
            if abs(dx) < r:
                best = max(best, cy + math.sqrt(r * r - dx * dx))
        return best
    layers = []
    for depth, (color, shrink, shift, foot) in enumerate(zip(colors, (1.0, 0.86, 0.66), (0, -0.035, -0.07), (0.0, 0.16, 0.4))):
        ends = [cx + side * r * shrink * height * 2 / width / ASPECT for cx, _, r in discs for side in (-1, 1)]
        first, last = min(ends) + shift, max(ends) + shift
        xs = [first + (last - first) * i / 240 for i in range(241)]
        upper, lower = [], []
        for x in xs:
            inside = 2 * (x - first) / (last - first) - 1
            y = top(x - shift, shrink) * math.sqrt(max(0.0, 1 - inside ** 8))
            low = foot * (0.75 + 0.25 * math.sin(9 * x + seed)) + 0.02 * math.sin(14 * x) * (depth == 0)
            low = min(low, y)
            upper.append((x, y))
            lower.append((x, low))
        def place(p):
            return at_distance(u + p[0] * width / 2, v - p[1] * height, far - depth)
        layers.append(tinted(strip([place(p) for p in lower], [place(p) for p in upper], TO_VIEWER), color))
    return merged(*layers)


def clouds(glb):
    for number, (u, v, width, height, far, seed, colors) in enumerate(CLOUDS, 1):
        glb.thing('Cloud %d' % number, ('Clouds', cloud(u, v, width, height, far, seed, colors)))
    glb.thing('Streaks', ('Clouds', merged(*[streak(*s) for s in STREAKS])))


# --- gulls -----------------------------------------------------------------------

def wing(side, lift):
    """From the shoulder at the origin outwards; z is towards the tail."""
    def at(u, v):
        along = u * 0.62
        bow = 0.2 * math.sin(math.pi * min(1.0, u * 0.95)) + (lift - 0.2) * u
        chord = 0.2 * (1 - u) ** 0.7 + 0.012
        sweep = 0.16 * u * u - 0.05 * math.sin(math.pi * u)
        return (along, bow, sweep + chord * (0.5 - v))
    def part(first, last, color):
        return tinted(sheet(lambda u, v: at(first + (last - first) * u, v), 4, 8), color)
    slab = thickened(merged(part(0.0, 0.72, WHITE), part(0.72, 1.0, NAVY)), 0.016)
    return slab if side > 0 else mirrored(slab)


def mirrored(shape):
    return shape._replace(points=[(-x, y, z) for x, y, z in shape.points],
                          faces=[f[::-1] for f in shape.faces],
                          normals=[(-x, y, z) for x, y, z in shape.normals])


def lying(shape):
    """A lathe laid along z, its lower end towards the viewer's left... forwards."""
    def turn(v): return (v[0], v[2], -v[1]) if v else v
    return shape._replace(points=[(x, -z, y) for x, y, z in shape.points],
                          normals=[(x, -z, y) for x, y, z in shape.normals])


def gull_body():
    body = lying(lathe([(0.0, -0.2), (0.035, -0.18), (0.05, -0.13), (0.062, -0.05), (0.055, 0.06),
                        (0.03, 0.16), (0.045, 0.24), (0.0, 0.25)], 16, True))
    beak = lying(lathe([(0.0, -0.27), (0.016, -0.19)], 10))
    return merged(tinted(body, WHITE), tinted(beak, '#f39a3c'))


# Place in the picture and distance, heading, roll, how high the wings are, size.
GULLS = ((0.30, 0.245, 20, 62, 14, 0.22, 1.0), (0.385, 0.175, 16.5, 75, -16, 0.12, 0.68),
         (0.235, 0.155, 27, 60, 10, 0.2, 0.9), (0.90, 0.235, 26, -60, -12, 0.2, 0.9),
         (0.46, 0.30, 34, 70, 8, 0.16, 0.9))


def gulls(glb):
    for number, (u, v, far, heading, roll, lift, size) in enumerate(GULLS, 1):
        name = 'Gull %d' % number
        body = glb.thing(name, ('Gull', gull_body(), HAIR_GULL / size), translation=at_distance(u, v, far),
                         rotation=quaternion_product(about_axis((0, 1, 0), heading), about_axis((0, 0, 1), roll)), scale=[size] * 3)
        for side, word in ((1, 'Right'), (-1, 'Left')):
            glb.thing('%s %s Wing' % (name, word), ('Gull', wing(side, lift), HAIR_GULL / size), parent=body,
                      translation=[side * 0.035, 0.03, 0])


HAIR_GULL = 0.013


def quaternion_product(a, b):
    ax, ay, az, aw = a
    bx, by, bz, bw = b
    return [aw * bx + ax * bw + ay * bz - az * by, aw * by - ax * bz + ay * bw + az * bx,
            aw * bz + ax * by - ay * bx + az * bw, aw * bw - ax * bx - ay * by - az * bz]


def perched_gull(glb, place, heading):
    """Standing, its wings folded."""
    body = placed(sphere(1.0, 20, 10), (0, 0.2, 0), 0, (0.09, 0.095, 0.19))
    head = placed(sphere(0.068, 16, 8), (0, 0.33, 0.13))
    beak = placed(lying(lathe([(0.0, -0.11), (0.02, 0.0)], 8)), (0, 0.32, 0.19), 180)
    wings = [placed(sphere(1.0, 16, 8), (side * 0.07, 0.23, -0.05), 0, (0.035, 0.07, 0.19)) for side in (-1, 1)]
    tail = placed(sphere(1.0, 12, 6), (0, 0.22, -0.2), 0, (0.04, 0.025, 0.1))
    legs = [placed(lathe([(0.012, -0.02), (0.012, 0.14)], 6), (side * 0.035, 0, 0.02)) for side in (-1, 1)]
    glb.thing('Perched Gull', ('Gull', merged(tinted(merged(body, head), WHITE), tinted(merged(*wings), '#a9b4c8'),
                                              tinted(tail, NAVY), tinted(merged(beak, *legs), '#f39a3c')), HAIR_GULL),
              translation=place, rotation=about_axis((0, 1, 0), heading))


def sky(glb):
    glb.thing('Sky', ('Sky', backdrop()))
    hills(glb)
    clouds(glb)
    gulls(glb)
