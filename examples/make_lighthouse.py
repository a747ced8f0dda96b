#!/usr/bin/env python3
"""Builds examples/lighthouse.glb, the scene of the demo picture.

Everything in it is made here: shapes, textures, lights and cameras. Run it
from anywhere; it needs Python 3 alone. The shader settings of the surfaces are
stored afterwards by scripts/make-example.

World: y up, metres, the camera looks from +x +z. Colours below are
display-referred hex; glTF wants linear factors, see linear().
"""

import json
import math
import random
import struct
import sys
import zlib
from pathlib import Path

random.seed(7)


# --- small vector maths -----------------------------------------------------

def add(a, b): return (a[0] + b[0], a[1] + b[1], a[2] + b[2])
def sub(a, b): return (a[0] - b[0], a[1] - b[1], a[2] - b[2])
def mul(a, s): return (a[0] * s, a[1] * s, a[2] * s)
def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])
def dot(a, b): return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]
def unit(a):
    n = math.sqrt(dot(a, a)) or 1.0
    return mul(a, 1.0 / n)
def smooth(e0, e1, x):
    t = min(1.0, max(0.0, (x - e0) / (e1 - e0)))
    return t * t * (3 - 2 * t)


def srgb(hex_color):
    return tuple(int(hex_color[i:i + 2], 16) for i in (1, 3, 5))


def linear(hex_color, alpha=1.0):
    def decode(c):
        c /= 255.0
        return c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4
    return [round(decode(c), 5) for c in srgb(hex_color)] + [alpha]


# --- shapes: each gives (positions, normals or None, uvs or None, triangles) --

def merged(*shapes):
    positions, normals, uvs, triangles = [], [], [], []
    for p, n, t, f in shapes:
        base = len(positions)
        positions += p
        normals += n if n else [(0, 0, 0)] * len(p)
        uvs += t if t else [(0, 0)] * len(p)
        triangles += [tuple(i + base for i in tri) for tri in f]
    keep_normals = all(s[1] for s in shapes)
    keep_uvs = any(s[2] for s in shapes)
    return positions, normals if keep_normals else None, uvs if keep_uvs else None, triangles


def placed(shape, offset=(0, 0, 0), turn=0.0, scale=(1, 1, 1)):
    """Scaled, then turned by `turn` degrees about y, then moved."""
    p, n, t, f = shape
    c, s = math.cos(math.radians(turn)), math.sin(math.radians(turn))
    def rotate(v): return (c * v[0] + s * v[2], v[1], -s * v[0] + c * v[2])
    positions = [add(rotate((v[0] * scale[0], v[1] * scale[1], v[2] * scale[2])), offset) for v in p]
    normals = n and [unit(rotate((v[0] / scale[0], v[1] / scale[1], v[2] / scale[2]))) for v in n]
    return positions, normals, t, f


def lathe(profile, segments=64):
    """Turns (radius, y) points about the y axis; equal neighbours split the normals."""
    positions, normals, uvs, triangles = [], [], [], []
    height = max(y for _, y in profile) - min(y for _, y in profile) or 1.0
    bottom = min(y for _, y in profile)
    for (r0, y0), (r1, y1) in zip(profile, profile[1:]):
        if (r0, y0) == (r1, y1):
            continue
        slope = unit((y1 - y0, r0 - r1, 0))
        base = len(positions)
        for i in range(segments + 1):
            a = 2 * math.pi * i / segments
            s, c = math.sin(a), math.cos(a)
            for r, y in ((r0, y0), (r1, y1)):
                positions.append((r * s, y, r * c))
                normals.append((slope[0] * s, slope[1], slope[0] * c))
                uvs.append((i / segments, 1 - (y - bottom) / height))
        for i in range(segments):
            k = base + 2 * i
            if r0 > 0:
                triangles.append((k, k + 2, k + 1))
            if r1 > 0:
                triangles.append((k + 1, k + 2, k + 3))
    return positions, normals, uvs, triangles


def rounded_lathe(profile, segments=64):
    """As lathe, with normals that run on smoothly along the profile."""
    positions, normals, uvs, triangles = [], [], [], []
    count = len(profile)
    for j, (r, y) in enumerate(profile):
        before, after = profile[max(0, j - 1)], profile[min(count - 1, j + 1)]
        slope = unit((after[1] - before[1], before[0] - after[0], 0))
        for i in range(segments + 1):
            a = 2 * math.pi * i / segments
            s, c = math.sin(a), math.cos(a)
            positions.append((r * s, y, r * c))
            normals.append((slope[0] * s, slope[1], slope[0] * c))
            uvs.append((i / segments, 1 - j / (count - 1)))
    row = segments + 1
    for j in range(count - 1):
        for i in range(segments):
            k = j * row + i
            triangles += [(k, k + 1, k + row), (k + 1, k + row + 1, k + row)]
    return positions, normals, uvs, triangles


def sphere(radius=1.0, segments=48, rings=24):
    profile = [(radius * math.sin(math.pi * j / rings), -radius * math.cos(math.pi * j / rings))
               for j in range(rings + 1)]
    p, _, t, f = rounded_lathe(profile, segments)
    return p, [unit(v) for v in p], t, f


def box(sx, sy, sz):
    """Centred in x and z, standing on y = 0; each face has the whole texture."""
    x, z = sx / 2, sz / 2
    faces = [((0, 0, 1), [(-x, 0, z), (x, 0, z), (x, sy, z), (-x, sy, z)]),
             ((0, 0, -1), [(x, 0, -z), (-x, 0, -z), (-x, sy, -z), (x, sy, -z)]),
             ((1, 0, 0), [(x, 0, z), (x, 0, -z), (x, sy, -z), (x, sy, z)]),
             ((-1, 0, 0), [(-x, 0, -z), (-x, 0, z), (-x, sy, z), (-x, sy, -z)]),
             ((0, 1, 0), [(-x, sy, z), (x, sy, z), (x, sy, -z), (-x, sy, -z)]),
             ((0, -1, 0), [(-x, 0, -z), (x, 0, -z), (x, 0, z), (-x, 0, z)])]
    positions, normals, uvs, triangles = [], [], [], []
    for normal, corners in faces:
        k = len(positions)
        positions += corners
        normals += [normal] * 4
        uvs += [(0, 1), (1, 1), (1, 0), (0, 0)]
        triangles += [(k, k + 1, k + 2), (k, k + 2, k + 3)]
    return positions, normals, uvs, triangles


def quad(a, b, c, d, repeat=(1, 1)):
    n = unit(cross(sub(b, a), sub(c, a)))
    u, v = repeat
    return [a, b, c, d], [n] * 4, [(0, v), (u, v), (u, 0), (0, 0)], [(0, 1, 2), (0, 2, 3)]


def rock(radius, seed, squash=0.7):
    """An icosphere pushed about; without normals, so that a reader makes flat ones."""
    rng = random.Random(seed)
    g = (1 + 5 ** 0.5) / 2
    points = [unit(v) for v in [(-1, g, 0), (1, g, 0), (-1, -g, 0), (1, -g, 0), (0, -1, g), (0, 1, g),
                                (0, -1, -g), (0, 1, -g), (g, 0, -1), (g, 0, 1), (-g, 0, -1), (-g, 0, 1)]]
    faces = [(0, 11, 5), (0, 5, 1), (0, 1, 7), (0, 7, 10), (0, 10, 11), (1, 5, 9), (5, 11, 4),
             (11, 10, 2), (10, 7, 6), (7, 1, 8), (3, 9, 4), (3, 4, 2), (3, 2, 6), (3, 6, 8),
             (3, 8, 9), (4, 9, 5), (2, 4, 11), (6, 2, 10), (8, 6, 7), (9, 8, 1)]
    middles = {}
    def middle(i, j):
        key = (min(i, j), max(i, j))
        if key not in middles:
            middles[key] = len(points)
            points.append(unit(add(points[i], points[j])))
        return middles[key]
    split = []
    for a, b, c in faces:
        ab, bc, ca = middle(a, b), middle(b, c), middle(c, a)
        split += [(a, ab, ca), (b, bc, ab), (c, ca, bc), (ab, bc, ca)]
    moved = []
    for p in points:
        r = radius * rng.uniform(0.78, 1.15)
        moved.append((p[0] * r, p[1] * r * squash, p[2] * r))
    return moved, None, None, split


# --- the island ---------------------------------------------------------------

def shore(angle):
    return 5.3 + 0.45 * math.sin(3 * angle + 0.4) + 0.3 * math.sin(5 * angle + 2.0)


def ground(x, z):
    """Height of the island at a place."""
    r, a = math.hypot(x, z), math.atan2(x, z)
    s = r / shore(a)
    bumps = 0.07 * math.sin(1.9 * x + 0.5) * math.cos(1.6 * z)
    return 1.45 * (1 - smooth(0.15, 1.12, s)) + bumps * (1 - smooth(0.7, 1.0, s)) - 0.1


def island(inner, outer, rings, lift, segments=128):
    """The ring of island between two shares of the way to the shore."""
    positions, normals, uvs, triangles = [], [], [], []
    for j in range(rings + 1):
        s = inner + (outer - inner) * j / rings
        for i in range(segments + 1):
            a = 2 * math.pi * i / segments
            x, z = s * shore(a) * math.sin(a), s * shore(a) * math.cos(a)
            e = 0.02
            positions.append((x, ground(x, z) + lift * (1 - smooth(0.9 * outer, outer, s)), z))
            normals.append(unit((ground(x - e, z) - ground(x + e, z), 2 * e,
                                 ground(x, z - e) - ground(x, z + e))))
            uvs.append((x / 4, z / 4))
    row = segments + 1
    for j in range(rings):
        for i in range(segments):
            k = j * row + i
            if j or inner > 0:
                triangles.append((k, k + row, k + 1))
            triangles.append((k + 1, k + row, k + row + 1))
    return positions, normals, uvs, triangles


# --- buildings and plants --------------------------------------------------------

def tree(height, puffs):
    trunk = lathe([(0.11, 0), (0.075, height * 0.55)], 20)
    crown = [placed(sphere(r, 40, 20), (x, height * y, z), 0, (1, 0.92, 1)) for x, y, z, r in puffs]
    return trunk, merged(*crown)


def gable(width, height, depth, overhang):
    """Roof over a box of width x depth, ridge along z; (slopes, gable walls)."""
    x, z = width / 2, depth / 2
    ox, oz, drop = x + overhang, z + overhang, overhang * height / x
    left = quad((-ox, -drop, oz), (0, height, oz), (0, height, -oz), (-ox, -drop, -oz), (1, 1))
    right = quad((ox, -drop, -oz), (0, height, -oz), (0, height, oz), (ox, -drop, oz), (1, 1))
    thick = 0.09
    def under(shape):
        p, n, t, f = shape
        return [(v[0], v[1] - thick, v[2]) for v in p], [mul(v, -1) for v in n], t, [tri[::-1] for tri in f]
    def rim(a, b):
        return quad((a[0], a[1] - thick, a[2]), (b[0], b[1] - thick, b[2]), b, a)
    rims = [rim((-ox, -drop, oz), (0, height, oz)), rim((0, height, oz), (ox, -drop, oz)),
            rim((ox, -drop, -oz), (0, height, -oz)), rim((0, height, -oz), (-ox, -drop, -oz)),
            rim((-ox, -drop, -oz), (-ox, -drop, oz)), rim((ox, -drop, oz), (ox, -drop, -oz))]
    slopes = merged(left, right, under(left), under(right), *rims)
    def wall(z, n):
        corners = [(-x, 0, z), (x, 0, z), (0, height, z)]
        return corners, [(0, 0, n)] * 3, None, [(0, 1, 2) if n > 0 else (0, 2, 1)]
    return slopes, merged(wall(z, 1), wall(-z, -1))


def hull():
    """Half-breadths lofted from stem (+z) to stern; closed by a deck."""
    stations = 28
    rows = 12
    positions, triangles = [], []
    for j in range(stations + 1):
        t = j / stations
        z = 1.15 - 2.1 * t
        beam = 0.52 * math.sin(math.pi * min(1.0, 0.02 + t * 0.78)) ** 0.75
        sheer = 0.42 + 0.28 * (1 - t) ** 2.2 + 0.06 * t * t
        for i in range(rows + 1):
            a = math.pi * (i / rows - 0.5)
            x = beam * math.copysign(abs(math.sin(a)) ** 0.8, a)
            positions.append((x, sheer - (sheer + 0.22) * math.cos(a) ** 0.7, z))
    row = rows + 1
    for j in range(stations):
        for i in range(rows):
            k = j * row + i
            triangles += [(k, k + row, k + 1), (k + 1, k + row, k + row + 1)]
    normals = [(0.0, 0.0, 0.0)] * len(positions)
    for a, b, c in triangles:
        n = cross(sub(positions[b], positions[a]), sub(positions[c], positions[a]))
        for k in (a, b, c):
            normals[k] = add(normals[k], n)
    skin = positions, [unit(n) for n in normals], None, triangles
    deck_points, deck_faces = [], []
    for j in range(stations + 1):
        k = j * row
        deck_points += [add(positions[k], (0.0, -0.06, 0)), add(positions[k + rows], (0.0, -0.06, 0))]
    for j in range(stations):
        k = 2 * j
        deck_faces += [(k, k + 1, k + 2), (k + 1, k + 3, k + 2)]
    deck = deck_points, [(0, 1, 0)] * len(deck_points), None, deck_faces
    stern = stations * row
    transom_faces = [(stern, stern + i, stern + i + 1) for i in range(1, rows)]
    transom_points = [positions[k] for k in range(stern, stern + row)]
    transom = (transom_points, [(0, 0, -1)] * row, None,
               [tuple(v - stern for v in reversed(t)) for t in transom_faces])
    return merged(skin, transom), deck


def sail(a, b, c, belly, steps=14):
    """A triangle that the wind bulges towards `belly`."""
    index, positions = {}, []
    for i in range(steps + 1):
        for j in range(steps + 1 - i):
            u, v = i / steps, j / steps
            w = 1 - u - v
            p = add(add(mul(a, w), mul(b, u)), mul(c, v))
            index[i, j] = len(positions)
            positions.append(add(p, mul(belly, 6.5 * (w * u * v + 0.15 * w * (u + v)))))
    triangles = []
    for i in range(steps):
        for j in range(steps - i):
            triangles.append((index[i, j], index[i + 1, j], index[i, j + 1]))
            if j < steps - i - 1:
                triangles.append((index[i + 1, j], index[i + 1, j + 1], index[i, j + 1]))
    normals = [(0.0, 0.0, 0.0)] * len(positions)
    for t in triangles:
        n = cross(sub(positions[t[1]], positions[t[0]]), sub(positions[t[2]], positions[t[0]]))
        for k in t:
            normals[k] = add(normals[k], n)
    return positions, [unit(n) for n in normals], None, triangles


def gull(span):
    wing = []
    for side in (-1, 1):
        root, elbow, tip = (0, 0, 0.05), (side * span * 0.45, span * 0.22, 0), (side * span, span * 0.06, 0.1)
        back = 0.16 * span
        wing += [[root, elbow, add(elbow, (0, 0, -back)), add(root, (0, 0, -back * 1.5))],
                 [elbow, tip, tip, add(elbow, (0, 0, -back))]]
    return merged(*[quad(*(w if k < 2 else w)) for k, w in enumerate(wing)])


# --- textures: a colour for every (u, v), averaged over 3 x 3 points ----------------

def png(width, height, rows):
    raw = b''.join(b'\0' + bytes(row) for row in rows)
    def chunk(kind, data):
        return struct.pack('>I', len(data)) + kind + data + struct.pack('>I', zlib.crc32(kind + data))
    header = struct.pack('>IIBBBBB', width, height, 8, 2, 0, 0, 0)
    return (b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', header) + chunk(b'IDAT', zlib.compress(raw, 9)) +
            chunk(b'IEND', b''))


def painted(width, height, color_at, grid=3):
    rows = []
    for y in range(height):
        row = []
        for x in range(width):
            total = [0, 0, 0]
            for j in range(grid):
                for i in range(grid):
                    c = color_at((x + (i + 0.5) / grid) / width, (y + (j + 0.5) / grid) / height)
                    total = [total[k] + c[k] for k in range(3)]
            row += [round(t / grid ** 2) for t in total]
        rows.append(row)
    return png(width, height, rows)


RED, CREAM, INK = srgb('#d8473f'), srgb('#fbf3e2'), srgb('#2c3a52')


def tower_paint(u, v):
    around = (u - 0.07 + 0.5) % 1.0 - 0.5
    height = 1 - v
    x = around * 4.4
    if abs(x) < 0.17 and height < 0.17 + math.sqrt(max(0.0, 0.17 ** 2 - x * x)) / 4:
        return srgb('#3d6e78') if abs(x) < 0.125 and height < 0.155 else CREAM
    for level, side in ((0.42, 0.0), (0.70, 0.0), (0.56, -0.25), (0.56, 0.25)):
        wx, wy = (around - side) * 4.4, (height - level) * 4.2
        if abs(wx) < 0.13 and -0.2 < wy < 0.12 + math.sqrt(max(0.0, 0.13 ** 2 - wx * wx)):
            inner = abs(wx) < 0.085 and -0.15 < wy < 0.08 + math.sqrt(max(0.0, 0.085 ** 2 - wx * wx))
            return INK if inner else CREAM
    return RED if int(height * 5.0 + 0.0) % 2 == 0 else CREAM


def wall_paint(u, v):
    base = srgb('#f6e7c8')
    if v > 0.9:
        return srgb('#b9a58c')
    for centre in (0.27, 0.73):
        x, y = abs(u - centre), v - 0.45
        if x < 0.115 and abs(y) < 0.2:
            pane = x < 0.09 and abs(y) < 0.17 and x > 0.012 and abs(y) > 0.015
            return srgb('#4d7f96') if pane else srgb('#fffaf0')
        if 0.115 <= x < 0.175 and abs(y) < 0.2:
            return srgb('#3f8f86') if (v * 26) % 1 > 0.22 else srgb('#35786f')
    return base


def door_paint(u, v):
    if v > 0.9 and not 0.36 < u < 0.64:
        return srgb('#b9a58c')
    if 0.36 < u < 0.64 and v > 0.28:
        if not 0.395 < u < 0.605 or v < 0.33:
            return srgb('#fffaf0')
        if (u - 0.575) ** 2 + ((v - 0.66) * 0.7) ** 2 < 0.00035:
            return srgb('#f2c14e')
        return srgb('#c2573f') if (u * 28) % 1 > 0.12 else srgb('#9c4231')
    return srgb('#f6e7c8')


def roof_paint(u, v):
    row = int(v * 9)
    column = (u * 12 + 0.5 * (row % 2)) % 1
    arc = 0.78 + 0.2 * math.sqrt(max(0.0, 1 - (2 * column - 1) ** 2))
    return srgb('#a8452f') if (v * 9) % 1 > arc or column < 0.05 else srgb('#dd7346')


def plank_paint(u, v):
    seam = (u * 10) % 1
    tone = [0, 6, -5, 3, -2, 8, -7, 1, 4, -3][int(u * 10) % 10]
    c = srgb('#c79a66')
    return srgb('#84603c') if seam < 0.09 else tuple(k + tone for k in c)


def sky_paint(u, v):
    low, high = srgb('#fdeccb'), srgb('#7fc4e0')
    t = smooth(0.0, 0.62, 1 - v) ** 0.8
    return tuple(low[k] + (high[k] - low[k]) * t for k in range(3))


def sea_paint(size=512):
    base, light, dark = srgb('#3fa3ad'), srgb('#6dc3c4'), srgb('#3594a2')
    rows = [list(base) * size for _ in range(size)]
    rng = random.Random(3)
    for stroke in range(46):
        color = light if stroke % 3 else dark
        cx, cy = rng.uniform(0, size), rng.uniform(0, size)
        length, thick = rng.uniform(26, 64), rng.uniform(2.2, 4.6)
        for x in range(int(cx - length), int(cx + length) + 1):
            t = (x - cx) / length
            middle = cy + 3.2 * math.sin(t * 3.1)
            half = thick * (1 - t * t)
            for y in range(int(middle - half - 1), int(middle + half + 2)):
                cover = min(1.0, max(0.0, half - abs(y - middle) + 0.5))
                if cover > 0:
                    k = (x % size) * 3
                    row = rows[y % size]
                    row[k:k + 3] = [round(row[k + i] + (color[i] - row[k + i]) * cover) for i in range(3)]
    return png(size, size, rows)


# --- glTF ---------------------------------------------------------------------------

class Glb:
    def __init__(self):
        self.data = bytearray()
        self.doc = {'asset': {'version': '2.0', 'generator': 'make_lighthouse.py',
                              'copyright': 'Tavora, for any use'},
                    'extensionsUsed': ['KHR_lights_punctual', 'KHR_materials_unlit'],
                    'scene': 0, 'scenes': [{'name': 'Lighthouse', 'nodes': []}],
                    'nodes': [], 'meshes': [], 'materials': [], 'textures': [], 'images': [],
                    'samplers': [{'wrapS': 10497, 'wrapT': 10497, 'magFilter': 9729, 'minFilter': 9987},
                                 {'wrapS': 33071, 'wrapT': 33071, 'magFilter': 9729, 'minFilter': 9987}],
                    'cameras': [], 'accessors': [], 'bufferViews': [], 'buffers': []}
        self.materials = {}

    def view(self, blob, target=None):
        while len(self.data) % 4:
            self.data.append(0)
        entry = {'buffer': 0, 'byteOffset': len(self.data), 'byteLength': len(blob)}
        if target:
            entry['target'] = target
        self.data += blob
        self.doc['bufferViews'].append(entry)
        return len(self.doc['bufferViews']) - 1

    def accessor(self, values, kind, component, target, bounds=False):
        flat = [x for v in values for x in v] if kind != 'SCALAR' else list(values)
        code = {5126: 'f', 5123: 'H', 5125: 'I'}[component]
        entry = {'bufferView': self.view(struct.pack('<%d%s' % (len(flat), code), *flat), target),
                 'componentType': component, 'count': len(values), 'type': kind}
        if bounds:
            packed = [struct.unpack('<3f', struct.pack('<3f', *v)) for v in values]
            entry['min'] = [min(v[k] for v in packed) for k in range(3)]
            entry['max'] = [max(v[k] for v in packed) for k in range(3)]
        self.doc['accessors'].append(entry)
        return len(self.doc['accessors']) - 1

    def texture(self, name, blob, sampler=0):
        self.doc['images'].append({'name': name, 'mimeType': 'image/png', 'bufferView': self.view(blob)})
        self.doc['textures'].append({'source': len(self.doc['images']) - 1, 'sampler': sampler})
        return len(self.doc['textures']) - 1

    def material(self, name, color='#ffffff', texture=None, alpha=1.0, **more):
        pbr = {'baseColorFactor': linear(color, alpha), 'metallicFactor': 0.0, 'roughnessFactor': 1.0}
        if texture is not None:
            pbr['baseColorTexture'] = {'index': texture}
        self.doc['materials'].append({'name': name, 'pbrMetallicRoughness': pbr, **more})
        self.materials[name] = len(self.doc['materials']) - 1

    def primitive(self, material, shape):
        positions, normals, uvs, triangles = shape
        attributes = {'POSITION': self.accessor(positions, 'VEC3', 5126, 34962, True)}
        if normals:
            attributes['NORMAL'] = self.accessor(normals, 'VEC3', 5126, 34962)
        textured = 'baseColorTexture' in self.doc['materials'][self.materials[material]]['pbrMetallicRoughness']
        if uvs and textured:
            attributes['TEXCOORD_0'] = self.accessor(uvs, 'VEC2', 5126, 34962)
        component = 5123 if len(positions) < 65536 else 5125
        indices = self.accessor([i for t in triangles for i in t], 'SCALAR', component, 34963)
        return {'attributes': attributes, 'indices': indices, 'material': self.materials[material]}

    def mesh(self, name, *parts):
        self.doc['meshes'].append({'name': name, 'primitives': [self.primitive(m, s) for m, s in parts]})
        return len(self.doc['meshes']) - 1

    def node(self, name, **fields):
        self.doc['nodes'].append({'name': name, **fields})
        self.doc['scenes'][0]['nodes'].append(len(self.doc['nodes']) - 1)

    def write(self, path):
        self.doc['buffers'] = [{'byteLength': len(self.data)}]
        text = json.dumps(self.doc, separators=(',', ':')).encode()
        text += b' ' * (-len(text) % 4)
        self.data += b'\0' * (-len(self.data) % 4)
        size = 12 + 8 + len(text) + 8 + len(self.data)
        path.write_bytes(struct.pack('<4sII', b'glTF', 2, size) +
                         struct.pack('<I4s', len(text), b'JSON') + text +
                         struct.pack('<I4s', len(self.data), b'BIN\0') + bytes(self.data))


def aimed(direction):
    """The quaternion that turns -z to `direction`, upright."""
    z = unit(mul(direction, -1))
    x = unit(cross((0, 1, 0) if abs(z[1]) < 0.999 else (0, 0, -1), z))
    y = cross(z, x)
    m = (x, y, z)
    w = math.sqrt(max(0.0, 1 + x[0] + y[1] + z[2])) / 2
    if w > 1e-4:
        return [(y[2] - z[1]) / (4 * w), (z[0] - x[2]) / (4 * w), (x[1] - y[0]) / (4 * w), w]
    i = max(range(3), key=lambda k: m[k][k])
    q = [0.0] * 4
    q[i] = math.sqrt(max(0.0, 1 + 2 * m[i][i] - x[0] - y[1] - z[2])) / 2
    j, k = (i + 1) % 3, (i + 2) % 3
    q[j] = (m[i][j] + m[j][i]) / (4 * q[i])
    q[k] = (m[i][k] + m[k][i]) / (4 * q[i])
    return q


# --- the scene -----------------------------------------------------------------------

def materials(glb):
    glb.material('Sky', texture=glb.texture('sky', painted(16, 256, sky_paint, 1), 1),
                 extensions={'KHR_materials_unlit': {}})
    glb.material('Sea', texture=glb.texture('sea', sea_paint()))
    glb.material('Grass', '#8cbf5a')
    glb.material('Sand', '#f0d49a')
    glb.material('Rock', '#8d8f9c')
    glb.material('Tower', texture=glb.texture('tower', painted(512, 512, tower_paint)))
    glb.material('Trim', '#fbf3e2')
    glb.material('Red Roof', '#d8473f')
    glb.material('Iron', '#37465e')
    glb.material('Glass', '#bfe6ef', alpha=0.35, alphaMode='BLEND', doubleSided=True)
    glb.material('Lamp', '#fff0b0', emissiveFactor=linear('#ffdf80')[:3])
    glb.material('Wall', texture=glb.texture('wall', painted(256, 192, wall_paint)))
    glb.material('Door', texture=glb.texture('door', painted(256, 192, door_paint)))
    glb.material('Plaster', '#f6e7c8')
    glb.material('Tiles', texture=glb.texture('tiles', painted(256, 192, roof_paint)))
    glb.material('Planks', texture=glb.texture('planks', painted(256, 32, plank_paint)))
    glb.material('Wood', '#a97a4c')
    glb.material('Leaves', '#4f9a58')
    glb.material('Young Leaves', '#a5c24f')
    glb.material('Hull', '#e2604f')
    glb.material('Deck', '#d9b07a')
    glb.material('Sail', '#fdf6e6', doubleSided=True)
    glb.material('Jib', '#f5b24a', doubleSided=True)
    glb.material('Buoy', '#f08a3c')
    glb.material('Cloud', '#ffffff')
    glb.material('Far Hills', '#9fc6cf')
    glb.material('Gull', '#ffffff', doubleSided=True)


EYE, LOOK = (7.9, 3.4, 16.2), (0.75, 3.0, 0.0)


def across(distance, reach, low, high):
    """A wall across the view at a distance from the eye."""
    away = unit((LOOK[0] - EYE[0], 0, LOOK[2] - EYE[2]))
    side = mul(cross(away, (0, 1, 0)), reach)
    foot = add((EYE[0], 0, EYE[2]), mul(away, distance))
    left, right = sub(foot, side), add(foot, side)
    return quad((left[0], low, left[2]), (right[0], low, right[2]),
                (right[0], high, right[2]), (left[0], high, left[2]))


def landscape(glb):
    glb.node('Backdrop', mesh=glb.mesh('Backdrop', ('Sky', across(620, 420, -20, 330))))
    glb.node('Sea', mesh=glb.mesh('Sea', ('Sea', quad(
        (-800, 0, 120), (800, 0, 120), (800, 0, -800), (-800, 0, -800), (230, 131)))))
    glb.node('Island', mesh=glb.mesh('Island', ('Grass', island(0.0, 0.76, 26, 0.09)),
                                     ('Sand', island(0.70, 1.12, 12, 0.0))))
    hills = [placed(rounded_lathe([(r, 1 - r * r if r < 1 else 0) for r in
                                   [1 - k / 20 for k in range(21)]], 64), at, 0, size)
             for at, size in (((-128, -0.6, -190), (56, 17, 18)), ((-78, -0.6, -200), (44, 10, 16)),
                              ((12, -0.6, -230), (50, 9, 16)))]
    glb.node('Hills', mesh=glb.mesh('Hills', ('Far Hills', merged(*hills))))
    places = [(-4.7, 0.0, 2.5, 0.95, 1), (-5.5, -0.05, 1.3, 0.7, 2), (-3.9, -0.05, 3.6, 0.55, 3),
              (4.7, 0.05, -1.6, 1.1, 4), (5.6, -0.1, -0.5, 0.7, 5), (3.9, 0.0, 2.5, 0.6, 6),
              (-1.2, -0.1, 5.2, 0.42, 7), (-6.3, -0.1, 3.4, 0.42, 9)]
    rocks = [placed(rock(r, seed), (x, y, z), 40 * seed) for x, y, z, r, seed in places]
    glb.node('Rocks', mesh=glb.mesh('Rocks', ('Rock', merged(*rocks))))


def lighthouse(glb):
    x, z = -1.7, -0.5
    base = ground(x, z) - 0.12
    tower = lathe([(0.98, 0.0), (0.6, 4.7)], 96)
    plinth = lathe([(1.22, -0.3), (1.22, 0.16), (0.95, 0.24)], 96)
    gallery = lathe([(0.55, 4.62), (0.86, 4.78), (0.86, 4.92), (0.3, 4.92)], 96)
    rail = merged(lathe([(0.83, 5.18), (0.86, 5.21), (0.83, 5.24), (0.80, 5.21), (0.83, 5.18)], 72),
                  *[placed(lathe([(0.022, 4.9), (0.022, 5.2)], 10),
                           (0.83 * math.sin(a), 0, 0.83 * math.cos(a)))
                    for a in [2 * math.pi * k / 14 for k in range(14)]])
    frame = merged(lathe([(0.47, 4.92), (0.47, 5.02), (0.40, 5.02)], 72),
                   lathe([(0.40, 5.66), (0.47, 5.66), (0.47, 5.74), (0.40, 5.74)], 72),
                   *[placed(lathe([(0.03, 5.0), (0.03, 5.7)], 10), (0.44 * math.sin(a), 0, 0.44 * math.cos(a)))
                     for a in [2 * math.pi * (k + 0.35) / 8 for k in range(8)]])
    glass = lathe([(0.42, 5.02), (0.42, 5.66)], 72)
    roof = rounded_lathe([(0.66, 5.70), (0.60, 5.80), (0.46, 5.98), (0.26, 6.20), (0.08, 6.36), (0.0, 6.42)], 72)
    under = lathe([(0.3, 5.72), (0.66, 5.70)], 72)
    ball = merged(placed(sphere(0.1, 32, 16), (0, 6.5, 0)), lathe([(0.018, 6.5), (0.012, 6.95)], 10))
    lamp = placed(sphere(0.2, 40, 20), (0, 5.34, 0), 0, (1, 1.2, 1))
    glb.node('Lighthouse', translation=[x, base, z], mesh=glb.mesh(
        'Lighthouse', ('Tower', tower), ('Trim', merged(plinth, gallery)),
        ('Iron', merged(rail, frame, ball)), ('Glass', glass), ('Red Roof', merged(roof, under)),
        ('Lamp', lamp)))
    return (x, base + 5.34, z)


def cottage(glb):
    x, z, turn = 1.45, 0.75, -14
    floor = ground(x, z) - 0.25
    w, h, d = 1.9, 1.15, 1.5
    p, n, t, f = box(w, h, d)
    front = p[0:4], n[0:4], t[0:4], [(0, 1, 2), (0, 2, 3)]
    rest = p[4:], n[4:], t[4:], [tuple(i - 4 for i in tri) for tri in f[2:]]
    slopes, walls = gable(d, 0.85, w, 0.17)
    def up(shape): return placed(shape, (0, h, 0), 90)
    chimney = placed(box(0.26, 0.75, 0.26), (0.5, h + 0.35, -0.3))
    cap = placed(box(0.34, 0.09, 0.34), (0.5, h + 1.1, -0.3))
    angle = math.radians(turn) / 2
    glb.node('Cottage', translation=[x, floor, z], rotation=[0, math.sin(angle), 0, math.cos(angle)],
             mesh=glb.mesh('Cottage', ('Door', front), ('Wall', rest), ('Tiles', up(slopes)),
                           ('Plaster', merged(up(walls), chimney)), ('Iron', cap)))


def plants(glb):
    round_crown = [(0, 0.72, 0, 0.52), (0.3, 0.6, 0.18, 0.36), (-0.3, 0.58, 0.1, 0.38),
                   (0.05, 0.98, -0.05, 0.36), (-0.05, 0.62, -0.3, 0.34)]
    small_crown = [(0, 0.75, 0, 0.4), (0.2, 0.62, 0.14, 0.27), (-0.2, 0.62, 0.06, 0.28), (0.02, 1.0, 0, 0.26)]
    for name, crown, leaves, spots in (
            ('Oak', round_crown, 'Leaves', ((3.0, -0.55, 1.5, 20), (0.45, -2.1, 1.75, 120), (-3.35, -0.9, 1.2, 200))),
            ('Birch', small_crown, 'Young Leaves', ((3.35, 0.75, 1.05, 60), (-0.35, -1.3, 1.25, 10), (-2.9, 1.0, 0.85, 90)))):
        trunk, puffs = tree(1.6, crown)
        mesh = glb.mesh(name, ('Wood', trunk), (leaves, puffs))
        for number, (x, z, size, turn) in enumerate(spots, 1):
            a = math.radians(turn) / 2
            glb.node('%s %d' % (name, number), mesh=mesh, translation=[x, ground(x, z) - 0.06, z],
                     rotation=[0, math.sin(a), 0, math.cos(a)], scale=[size * 0.8] * 3)


def pier(glb):
    planks = merged(*[placed(box(0.98, 0.07, 0.42), (0, 0.42, 0.45 * k)) for k in range(9)])
    posts = merged(*[placed(lathe([(0.075, -0.6), (0.075, 0.68), (0.0, 0.70)], 20), (side * 0.5, 0, 0.3 + 1.15 * k))
                     for k in range(4) for side in (-1, 1)])
    angle = math.radians(16) / 2
    glb.node('Pier', translation=[1.0, 0.0, 4.15], rotation=[0, math.sin(angle), 0, math.cos(angle)],
             mesh=glb.mesh('Pier', ('Planks', planks), ('Wood', posts)))


def boat(glb):
    skin, deck = hull()
    mast = placed(lathe([(0.035, 0.2), (0.02, 2.75)], 16), (0, 0, 0.1))
    main = sail((0.0, 0.62, 0.05), (0.0, 0.62, -1.05), (0.0, 2.6, 0.08), (0.34, 0, 0))
    jib = sail((0.0, 0.68, 1.02), (0.0, 0.66, 0.2), (0.0, 2.3, 0.12), (0.3, 0, 0))
    stripe_mast = placed(lathe([(0.02, 0.62), (0.02, 0.63)], 8), (0, 0, 0))
    boom_points = lathe([(0.02, -1.1), (0.02, 0.1)], 12)
    p, n, t, f = boom_points
    boom = ([(v[0], v[2] + 0.6, v[1]) for v in p], [(v[0], v[2], v[1]) for v in n], t, [tri[::-1] for tri in f])
    angle = math.radians(62) / 2
    glb.node('Boat', translation=[6.9, 0.12, 3.0], rotation=[0, math.sin(angle), 0, math.cos(angle)],
             scale=[0.92, 0.92, 0.92],
             mesh=glb.mesh('Boat', ('Hull', skin), ('Deck', deck), ('Wood', merged(mast, boom, stripe_mast)),
                           ('Sail', main), ('Jib', jib)))
    float_body = rounded_lathe([(0.0, -0.3), (0.3, -0.2), (0.36, 0.0), (0.3, 0.2), (0.16, 0.3), (0.12, 0.6),
                                (0.10, 0.85), (0.0, 0.92)], 48)
    ring = lathe([(0.165, 0.40), (0.165, 0.62)], 48)
    glb.node('Buoy', translation=[-1.6, 0.05, 7.0], rotation=[0.05, 0, -0.08, 0.995],
             mesh=glb.mesh('Buoy', ('Buoy', float_body), ('Trim', ring)))


def sky_things(glb):
    def cloud(seed, size):
        rng = random.Random(seed)
        puffs = []
        for k in range(7):
            t = (k - 3) / 3
            r = size * (1.15 - 0.62 * abs(t)) * rng.uniform(0.85, 1.1)
            puffs.append(placed(sphere(r, 40, 20), (t * size * 2.4, r * 0.55, rng.uniform(-0.3, 0.3) * size), 0, (1, 0.82, 1)))
        return merged(*puffs)
    for number, (seed, size, at) in enumerate(((1, 6.6, (-84, 34, -150)), (5, 5.6, (6, 30, -150)),
                                               (9, 3.2, (34, 47, -150)), (12, 3.4, (-62, 52, -170))), 1):
        glb.node('Cloud %d' % number, translation=list(at), mesh=glb.mesh('Cloud %d' % number, ('Cloud', cloud(seed, size))))
    mesh = glb.mesh('Gull', ('Gull', gull(0.62)))
    for number, (at, turn) in enumerate((((1.3, 5.2, 0.5), 30), ((2.4, 5.75, -1.0), 10), ((0.6, 6.3, -2.0), 50)), 1):
        a = math.radians(turn) / 2
        glb.node('Gull %d' % number, mesh=mesh, translation=list(at), rotation=[0, math.sin(a), 0, math.cos(a)])


def lights_and_cameras(glb, lantern):
    target = (6.4, 0.0, 4.0)
    beam = unit(sub(target, lantern))
    glb.doc['extensions'] = {'KHR_lights_punctual': {'lights': [
        {'name': 'Sun', 'type': 'directional', 'color': linear('#fff4d6')[:3], 'intensity': 3.0},
        {'name': 'Sky Fill', 'type': 'directional', 'color': linear('#b8d8ff')[:3], 'intensity': 0.75},
        {'name': 'Lantern', 'type': 'spot', 'color': linear('#ffd98a')[:3], 'intensity': 420000.0,
         'spot': {'innerConeAngle': 0.11, 'outerConeAngle': 0.2}}]}}
    def light(name, index, at, direction):
        glb.node(name, translation=list(at), rotation=aimed(direction),
                 extensions={'KHR_lights_punctual': {'light': index}})
    light('Sun', 0, (-20, 26, 22), (0.66, -0.66, -0.42))
    light('Sky Fill', 1, (20, 12, 20), (-0.75, -0.28, -0.55))
    light('Lantern', 2, add(lantern, mul(beam, 0.6)), beam)
    glb.doc['cameras'] = [
        {'name': 'Shore', 'type': 'perspective', 'perspective': {'yfov': 0.525, 'znear': 0.1, 'zfar': 2000}},
        {'name': 'Chart', 'type': 'orthographic', 'orthographic': {'xmag': 12, 'ymag': 7, 'znear': 0.1, 'zfar': 60}}]
    glb.node('Shore', translation=list(EYE), rotation=aimed(sub(LOOK, EYE)), camera=0)
    glb.node('Chart', translation=[0.5, 30, 2], rotation=aimed((0, -1, 0)), camera=1)
    glb.doc['scenes'][0]['extras'] = {'tavora': {'ambient': [0.16, 0.17, 0.2]}}


def main():
    target = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).with_name('lighthouse.glb')
    glb = Glb()
    materials(glb)
    landscape(glb)
    lantern = lighthouse(glb)
    cottage(glb)
    plants(glb)
    pier(glb)
    boat(glb)
    sky_things(glb)
    lights_and_cameras(glb, lantern)
    glb.write(target)


if __name__ == '__main__':
    main()
