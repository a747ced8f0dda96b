"""Shapes: triangles with normals and colours, and what is done to them."""

import math
from typing import NamedTuple, Optional

from .palette import INK
from .vectors import add, cross, dot, length, mul, sub, turned, unit


class Shape(NamedTuple):
    points: list
    faces: list                     # triples of indices, counter-clockwise from outside
    normals: Optional[list] = None  # none: flat faces
    colors: Optional[list] = None   # linear RGBA for each point; none: white
    moves: Optional[list] = None    # of a surface which waves: for each weight, the way of each point
    bends: Optional[list] = None    # and the change of each normal


def linear(hex_color, alpha=1.0):
    def decode(c):
        c /= 255.0
        return c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4
    return (*(decode(int(hex_color[i:i + 2], 16)) for i in (1, 3, 5)), alpha)


# --- what is done to shapes ------------------------------------------------------

def tinted(shape, hex_color, alpha=1.0):
    return shape._replace(colors=[linear(hex_color, alpha)] * len(shape.points))


def merged(*shapes):
    points, faces, normals, colors = [], [], [], []
    for shape in shapes:
        base = len(points)
        points += shape.points
        faces += [tuple(i + base for i in face) for face in shape.faces]
        normals += shape.normals or []
        colors += shape.colors or []
    return Shape(points, faces, normals if len(normals) == len(points) else None,
                 colors if len(colors) == len(points) else None)


def placed(shape, offset=(0, 0, 0), turn=0.0, scale=(1, 1, 1)):
    """Scaled, then turned by `turn` degrees about y, then moved."""
    def stretch(v): return (v[0] * scale[0], v[1] * scale[1], v[2] * scale[2])
    def shrink(v): return (v[0] / scale[0], v[1] / scale[1], v[2] / scale[2])
    return shape._replace(
        points=[add(turned(stretch(p), turn), offset) for p in shape.points],
        normals=shape.normals and [unit(turned(shrink(n), turn)) for n in shape.normals])


def leaning(shape, lean):
    """Sheared: what is one metre up moves by `lean` in x and z."""
    return shape._replace(points=[(x + lean[0] * y, y, z + lean[1] * y) for x, y, z in shape.points])


def mirrored(shape):
    """In x."""
    def flip(vectors): return [(-x, y, z) for x, y, z in vectors]
    return shape._replace(points=flip(shape.points), faces=[face[::-1] for face in shape.faces],
                          normals=flip(shape.normals))


def laid(shape):
    """What stood along y lies along z."""
    def turn(vectors): return [(x, -z, y) for x, y, z in vectors]
    return shape._replace(points=turn(shape.points), normals=turn(shape.normals))


def facing(shape, normal):
    """A flat shape with all of its faces turned to the side of `normal`."""
    def is_away(face): return dot(face_normal(shape.points, face), normal) < 0
    return shape._replace(faces=[face[::-1] if is_away(face) else face for face in shape.faces])


def face_normal(points, face):
    a, b, c = (points[i] for i in face)
    return cross(sub(b, a), sub(c, a))


def smoothed(points, faces):
    normals = [(0.0, 0.0, 0.0)] * len(points)
    for face in faces:
        n = face_normal(points, face)
        for i in face:
            normals[i] = add(normals[i], n)
    return Shape(points, faces, [unit(n) for n in normals])


def flat(points, faces):
    """Every face with corners and a normal of its own."""
    corners = [points[i] for face in faces for i in face]
    normals = [unit(face_normal(points, face)) for face in faces for _ in range(3)]
    return Shape(corners, [(i, i + 1, i + 2) for i in range(0, len(corners), 3)], normals)


def thickened(sheet, thickness):
    """A smooth sheet as a slab, its edges closed."""
    count = len(sheet.points)
    half = thickness / 2
    front = [add(p, mul(n, half)) for p, n in zip(sheet.points, sheet.normals)]
    back = [sub(p, mul(n, half)) for p, n in zip(sheet.points, sheet.normals)]
    edges = {(face[k], face[(k + 1) % 3]) for face in sheet.faces for k in range(3)}
    rim = []
    for a, b in sorted(edges):
        if (b, a) not in edges:
            wall = flat([front[a], back[a], back[b], front[b]], [(0, 1, 2), (0, 2, 3)])
            rim.append(wall._replace(colors=sheet.colors and [sheet.colors[a]] * len(wall.points)))
    body = Shape(front + back,
                 sheet.faces + [tuple(i + count for i in face[::-1]) for face in sheet.faces],
                 sheet.normals + [mul(n, -1) for n in sheet.normals],
                 sheet.colors and sheet.colors * 2)
    return merged(body, *rim)


def distinct_directions(shape):
    """For every place the directions of the faces that meet there, alike ones once."""
    meeting = {}
    for face in shape.faces:
        n = face_normal(shape.points, face)
        if length(n) < 1e-12:
            continue
        n = unit(n)
        for i in face:
            known = meeting.setdefault(place_key(shape.points[i]), [])
            if all(dot(n, other) < 0.97 for other in known):
                known.append(n)
    return meeting


def place_key(point):
    return tuple(round(c, 5) for c in point)


def ink_shell(shape, width):
    """The shape blown up by `width` and turned inside out, in ink. Renderers show
    faces from the front only, so that what is seen of it is a rim about the shape
    and lines where one part of it stands before another, from wherever one looks. It
    moves as the shape does."""
    shift = {}
    for place, directions in distinct_directions(shape).items():
        outward = unit((sum(n[0] for n in directions), sum(n[1] for n in directions),
                        sum(n[2] for n in directions)))
        reach = sum(dot(outward, n) for n in directions) / len(directions)
        shift[place] = mul(outward, width / max(reach, 0.5))
    index, points, faces, sources = {}, [], [], []
    for face in shape.faces:
        places = [place_key(shape.points[i]) for i in face]
        if len(set(places)) < 3 or any(place not in shift for place in places):
            continue
        for place, i in zip(places, face):
            if place not in index:
                index[place] = len(points)
                points.append(add(shape.points[i], shift[place]))
                sources.append(i)
        faces.append(tuple(index[place] for place in reversed(places)))
    moves = shape.moves and [[ways[i] for i in sources] for ways in shape.moves]
    return tinted(Shape(points, faces, moves=moves), INK)


# --- solids ------------------------------------------------------------------------

def lathe(profile, segments=48, is_round=False):
    """Turns (radius, y) points, from below upwards, about the y axis. Each piece of
    the profile is a cone of its own; or all of it runs on smoothly."""
    if not is_round:
        return merged(*[lathe(list(pair), segments, True) for pair in zip(profile, profile[1:])])
    points, faces, normals = [], [], []
    last = len(profile) - 1
    row = segments + 1
    for j, (r, y) in enumerate(profile):
        before, after = profile[max(0, j - 1)], profile[min(last, j + 1)]
        slope = unit((after[1] - before[1], before[0] - after[0], 0))
        for i in range(row):
            a = 2 * math.pi * i / segments
            s, c = math.sin(a), math.cos(a)
            points.append((r * s, y, r * c))
            normals.append((slope[0] * s, slope[1], slope[0] * c))
    for j in range(last):
        for i in range(segments):
            k = j * row + i
            if profile[j][0] > 0:
                faces.append((k, k + 1, k + row))
            if profile[j + 1][0] > 0:
                faces.append((k + 1, k + row + 1, k + row))
    return Shape(points, faces, normals)


def sphere(radius=1.0, segments=28, rings=14):
    angles = [math.pi * j / rings for j in range(rings + 1)]
    profile = [(radius * math.sin(a) if 0 < j < rings else 0.0, -radius * math.cos(a))
               for j, a in enumerate(angles)]
    ball = lathe(profile, segments, True)
    return ball._replace(normals=[unit(p) for p in ball.points])


def box(sx, sy, sz):
    """Centred in x and z, standing on y = 0."""
    x, z = sx / 2, sz / 2
    points = [(-x, 0, z), (x, 0, z), (x, sy, z), (-x, sy, z),
              (-x, 0, -z), (x, 0, -z), (x, sy, -z), (-x, sy, -z)]
    sides = [(0, 1, 2, 3), (5, 4, 7, 6), (1, 5, 6, 2), (4, 0, 3, 7), (3, 2, 6, 7), (4, 5, 1, 0)]
    return flat(points, [t for a, b, c, d in sides for t in ((a, b, c), (a, c, d))])


def tube(path, radius, sides=8):
    """Along a line of points, closed at its ends."""
    points, faces = [], []
    last = len(path) - 1
    for k, p in enumerate(path):
        along = unit(sub(path[min(last, k + 1)], path[max(0, k - 1)]))
        across = unit(cross(along, (0, 1, 0) if abs(along[1]) < 0.9 else (1, 0, 0)))
        up = cross(across, along)
        for i in range(sides):
            a = 2 * math.pi * i / sides
            points.append(add(p, add(mul(across, radius * math.cos(a)), mul(up, radius * math.sin(a)))))
    for k in range(last):
        for i in range(sides):
            a, b = k * sides + i, k * sides + (i + 1) % sides
            faces += [(a, b + sides, b), (a, a + sides, b + sides)]
    ends = [(0, i, i + 1) for i in range(1, sides - 1)]
    ends += [(last * sides, last * sides + i + 1, last * sides + i) for i in range(1, sides - 1)]
    body = smoothed(points, faces)
    return body._replace(faces=body.faces + ends)


def grid_faces(rows, columns):
    """Of points laid out row by row, counter-clockwise where columns run to the
    right and rows run up."""
    faces = []
    for j in range(rows - 1):
        for i in range(columns - 1):
            k = j * columns + i
            faces += [(k, k + 1, k + columns + 1), (k, k + columns + 1, k + columns)]
    return faces


def sheet(point_at, rows, columns):
    """A smooth sheet of point_at(u, v), u to the right and v up, both from 0 to 1."""
    points = [point_at(i / (columns - 1), j / (rows - 1)) for j in range(rows) for i in range(columns)]
    return smoothed(points, grid_faces(rows, columns))


def convex(points):
    """The convex hull of a few points, with flat faces."""
    faces = []
    count = len(points)
    for a in range(count):
        for b in range(a + 1, count):
            for c in range(b + 1, count):
                n = face_normal(points, (a, b, c))
                sides = [dot(n, sub(points[k], points[a])) for k in range(count) if k not in (a, b, c)]
                if all(s < 0 for s in sides):
                    faces.append((a, b, c))
                elif all(s > 0 for s in sides):
                    faces.append((a, c, b))
    return flat(points, faces)


# --- flat shapes -------------------------------------------------------------------

def fan(outline, normal):
    """A flat shape that can be seen whole from the middle of its outline, which runs
    counter-clockwise."""
    count = len(outline)
    middle = mul((sum(p[0] for p in outline), sum(p[1] for p in outline),
                  sum(p[2] for p in outline)), 1 / count)
    return Shape([middle, *outline], [(0, 1 + i, 1 + (i + 1) % count) for i in range(count)],
                 [normal] * (count + 1))


def strip(lower, upper, normal):
    """Between two lines of equally many points, the second above the first."""
    count = len(lower)
    return Shape([*lower, *upper], grid_faces(2, count), [normal] * (2 * count))


def closed_strip(inner, outer, normal):
    """Between two closed lines, seen counter-clockwise."""
    return strip([*outer, outer[0]], [*inner, inner[0]], normal)
