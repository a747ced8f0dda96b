"""Writes a scene of coloured shapes as a .glb file."""

import json
import struct

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
                    'accessors': [], 'bufferViews': [], 'buffers': []}
        self.materials = {}

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
        return {'attributes': attributes, 'indices': self.indices(shape),
                'material': self.materials[material]}

    def positions(self, points):
        kept = [struct.unpack('<3f', struct.pack('<3f', *p)) for p in points]
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
        self.doc['bufferViews'].append({'buffer': 0, 'byteOffset': len(self.data),
                                        'byteLength': len(blob), 'target': target})
        self.data += blob
        return len(self.doc['bufferViews']) - 1
