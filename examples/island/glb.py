"""Writes a scene of coloured shapes as a .glb file."""

import json
import struct

from .motion import PERIOD, weights
from .shapes import ink_shell

FLOAT, BYTE, SHORT, INT = 5126, 5121, 5123, 5125
VERTICES, INDICES = 34962, 34963


class Glb:
    def __init__(self, name):
        self.data = bytearray()
        self.doc = {'asset': {'version': '2.0', 'generator': 'make_lighthouse.py',
                              'copyright': 'Tavora, for any use'},
                    'extensionsUsed': ['KHR_lights_punctual', 'KHR_materials_unlit'],
                    'scene': 0, 'scenes': [{'name': name, 'nodes': []}],
                    'nodes': [], 'meshes': [], 'materials': [], 'cameras': [],
                    'animations': [{'name': 'Loop', 'channels': [], 'samplers': []}],
                    'accessors': [], 'bufferViews': [], 'buffers': []}
        self.materials = {}
        self.stored = {}  # accessors of key times and of values, by what they hold

    def material(self, name, **fields):
        """White: the shapes bring their colours."""
        pbr = {'metallicFactor': 0.0, 'roughnessFactor': 1.0}
        self.materials[name] = len(self.doc['materials'])
        self.doc['materials'].append({'name': name, 'pbrMetallicRoughness': pbr, **fields})

    def mesh(self, name, *parts):
        """Parts: (material, shape), or (material, shape, width of the ink). The ink wears
        the same material, which spares itself its own shadow, so that it keeps no sun
        from what it surrounds."""
        primitives = []
        for material, shape, *ink in parts:
            primitives.append(self.primitive(material, shape))
            primitives += [self.primitive(material, ink_shell(shape, width)) for width in ink]
        self.doc['meshes'].append({'name': name, 'primitives': primitives})
        return len(self.doc['meshes']) - 1

    def node(self, name, parent=None, **fields):
        """Adds a node to the scene or under another; gives its index."""
        index = len(self.doc['nodes'])
        self.doc['nodes'].append({'name': name, **fields})
        if parent is None:
            self.doc['scenes'][0]['nodes'].append(index)
        else:
            self.doc['nodes'][parent].setdefault('children', []).append(index)
        return index

    def thing(self, name, *parts, parent=None, **fields):
        """A node with a mesh of its own."""
        return self.node(name, parent, mesh=self.mesh(name, *parts), **fields)

    # --- the loop ----------------------------------------------------------------------

    def waving(self, name, *parts, cycles=1, **fields):
        """A thing whose shapes all wave."""
        node = self.thing(name, *parts, **fields)
        self.animate(node, 'weights', lambda t: weights(t, cycles), 8 * cycles)
        return node

    def animate(self, node, path, value_at, keys=16):
        """Moves a node through values at even times of the loop, smoothly."""
        times = [PERIOD * (k % keys) / keys for k in range(keys + 1)]
        values = continuous([value_at(t) for t in times], path)
        def slope(t, value, step=1e-4):
            before, after = (nearer(value_at(t + d), value, path) for d in (-step, step))
            return [(b - a) / (2 * step) for a, b in zip(before, after)]
        slopes = [slope(t, value) for t, value in zip(times, values)]
        self.channel(node, path, [*times[:-1], PERIOD],
                     [row for value, way in zip(values, slopes) for row in (way, value, way)], 'CUBICSPLINE')

    def animate_straight(self, node, path, times, values):
        """Moves a node from key to key at even speed."""
        self.channel(node, path, times, continuous(values, path), 'LINEAR')

    def channel(self, node, path, times, values, interpolation):
        kind = {'weights': 'SCALAR', 'rotation': 'VEC4'}.get(path, 'VEC3')
        if path == 'weights':
            values = [[weight] for value in values for weight in value]
        if path in self.doc['nodes'][node]:  # as the keys hold it, so that the loop begins with the still picture
            first = values[1 if interpolation == 'CUBICSPLINE' else 0]
            self.doc['nodes'][node][path] = [single(x) for x in first]
        loop = self.doc['animations'][0]
        sampler = {'input': self.kept([[t] for t in times], 'SCALAR', min=[times[0]], max=[times[-1]]),
                   'output': self.kept(values, kind), 'interpolation': interpolation}
        if sampler not in loop['samplers']:
            loop['samplers'].append(sampler)
        loop['channels'].append({'sampler': loop['samplers'].index(sampler), 'target': {'node': node, 'path': path}})

    def kept(self, values, kind, **fields):
        """An accessor of numbers no vertices take; alike ones are stored once."""
        key = (kind, tuple(x for value in values for x in value))
        if key not in self.stored:
            self.stored[key] = self.accessor(values, kind, FLOAT, None, **fields)
        return self.stored[key]

    # --- the file ------------------------------------------------------------------------

    def write(self, path):
        self.doc['buffers'] = [{'byteLength': len(self.data)}]
        text = json.dumps(self.doc, separators=(',', ':')).encode()
        text += b' ' * (-len(text) % 4)
        self.data += b'\0' * (-len(self.data) % 4)
        size = 12 + 8 + len(text) + 8 + len(self.data)
        path.write_bytes(struct.pack('<4sII', b'glTF', 2, size) +
                         struct.pack('<I4s', len(text), b'JSON') + text +
                         struct.pack('<I4s', len(self.data), b'BIN\0') + bytes(self.data))

    def primitive(self, material, shape):
        attributes = {'POSITION': self.positions(shape.points)}
        if shape.normals:
            attributes['NORMAL'] = self.accessor(shape.normals, 'VEC3', FLOAT)
        if shape.colors:
            steps = [[round(c * 255) for c in color] for color in shape.colors]
            attributes['COLOR_0'] = self.accessor(steps, 'VEC4', BYTE, normalized=True)
        primitive = {'attributes': attributes, 'indices': self.indices(shape),
                     'material': self.materials[material]}
        if shape.moves:
            primitive['targets'] = [{'POSITION': self.positions(ways)} for ways in shape.moves]
        for target, bends in zip(primitive.get('targets', ()), shape.bends or ()):
            target['NORMAL'] = self.accessor(bends, 'VEC3', FLOAT)
        return primitive

    def positions(self, points):
        kept = [[single(x) for x in p] for p in points]
        return self.accessor(points, 'VEC3', FLOAT, min=[min(p[k] for p in kept) for k in range(3)],
                             max=[max(p[k] for p in kept) for k in range(3)])

    def indices(self, shape):
        component = SHORT if len(shape.points) < 65536 else INT
        return self.accessor([[i] for face in shape.faces for i in face], 'SCALAR', component, INDICES)

    def accessor(self, values, kind, component, target=VERTICES, **fields):
        numbers = [x for value in values for x in value]
        code = {FLOAT: 'f', BYTE: 'B', SHORT: 'H', INT: 'I'}[component]
        view = self.view(struct.pack('<%d%s' % (len(numbers), code), *numbers), target)
        self.doc['accessors'].append({'bufferView': view, 'componentType': component,
                                      'count': len(values), 'type': kind, **fields})
        return len(self.doc['accessors']) - 1

    def view(self, blob, target):
        self.data += b'\0' * (-len(self.data) % 4)
        view = {'buffer': 0, 'byteOffset': len(self.data), 'byteLength': len(blob)}
        self.doc['bufferViews'].append({**view, 'target': target} if target else view)
        self.data += blob
        return len(self.doc['bufferViews']) - 1


def single(x):
    """A number as an accessor of floats holds it."""
    return struct.unpack('<f', struct.pack('<f', x))[0]


def nearer(value, other, path):
    """A turn has two quaternions: the one nearer to another."""
    return [-x for x in value] if path == 'rotation' and sum(a * b for a, b in zip(value, other)) < 0 else value


def continuous(values, path):
    """Neighbouring quaternions on one side, so that turns go the short way."""
    result = values[:1]
    for value in values[1:]:
        result.append(nearer(value, result[-1], path))
    return result
