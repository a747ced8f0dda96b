#!/usr/bin/env python3
"""Writes a glTF scene of a wanted size, to see how cost grows.

    make_growth_scene.py OUT.glb [--triangles N] [--surfaces N] [--lights N]

A bumpy ground cut into as many strips as surfaces, each its own mesh, under
lights in a ring.
"""

import argparse
import array
import json
import math
import struct


def strip(first_row, rows, columns, total_rows):
    """Positions, normals and indices of a run of rows of the ground."""
    positions, normals, indices = array.array("f"), array.array("f"), array.array("I")
    for row in range(first_row, first_row + rows + 1):
        z = 10.0 * row / total_rows - 5.0
        for column in range(columns + 1):
            x = 10.0 * column / columns - 5.0
            slope_x = 0.35 * math.cos(3.5 * x) * math.sin(2.5 * z)
            slope_z = 0.25 * math.sin(3.5 * x) * math.cos(2.5 * z)
            length = math.sqrt(slope_x * slope_x + slope_z * slope_z + 1)
            positions.extend((x, 0.1 * math.sin(3.5 * x) * math.sin(2.5 * z), z))
            normals.extend((-slope_x / length, 1 / length, -slope_z / length))
    for row in range(rows):
        for column in range(columns):
            a = row * (columns + 1) + column
            c = a + columns + 1
            indices.extend((a, c, a + 1, a + 1, c, c + 1))
    return positions, normals, indices


def add_accessor(scene, blob, data, kind, component):
    start = len(blob)
    blob.extend(data.tobytes())
    scene["bufferViews"].append({"buffer": 0, "byteOffset": start, "byteLength": len(blob) - start})
    width = {"VEC3": 3, "SCALAR": 1}[kind]
    accessor = {"bufferView": len(scene["bufferViews"]) - 1, "componentType": component,
                "count": len(data) // width, "type": kind}
    if kind == "VEC3":
        accessor["min"] = [min(data[i::3]) for i in range(3)]
        accessor["max"] = [max(data[i::3]) for i in range(3)]
    scene["accessors"].append(accessor)
    return len(scene["accessors"]) - 1


def add_ground(scene, blob, triangles, surfaces):
    side = max(1, round(math.sqrt(triangles / 2)))
    rows_each = max(1, round(side / surfaces))
    columns = max(1, round(triangles / 2 / (rows_each * surfaces)))
    for surface in range(surfaces):
        parts = strip(surface * rows_each, rows_each, columns, rows_each * surfaces)
        shade = 0.3 + 0.6 * (surface % 7) / 6
        scene["materials"].append({
            "name": f"Strip {surface}",
            "pbrMetallicRoughness": {"baseColorFactor": [shade, 0.7, 1 - shade, 1],
                                     "metallicFactor": 0}})
        primitive = {"attributes": {"POSITION": add_accessor(scene, blob, parts[0], "VEC3", 5126),
                                    "NORMAL": add_accessor(scene, blob, parts[1], "VEC3", 5126)},
                     "indices": add_accessor(scene, blob, parts[2], "SCALAR", 5125),
                     "material": surface}
        scene["meshes"].append({"primitives": [primitive]})
        scene["nodes"].append({"mesh": surface})


def add_lights(scene, count):
    lights = []
    for light in range(count):
        angle = 2 * math.pi * light / count
        lights.append({"name": f"Light {light}", "type": "directional",
                       "color": [1, 0.9, 0.8], "intensity": 3 / count})
        # Turned about Y by `angle`, then 50 degrees down.
        down, half = math.radians(-50) / 2, angle / 2
        turn = [math.cos(half) * math.sin(down), math.sin(half) * math.cos(down),
                -math.sin(half) * math.sin(down), math.cos(half) * math.cos(down)]
        scene["nodes"].append({"rotation": turn,
                               "extensions": {"KHR_lights_punctual": {"light": light}}})
    scene["extensions"] = {"KHR_lights_punctual": {"lights": lights}}
    scene["extensionsUsed"] = ["KHR_lights_punctual"]


def add_camera(scene):
    scene["cameras"] = [{"type": "perspective", "perspective": {"yfov": 0.7, "znear": 0.1}}]
    tilt = math.radians(-35) / 2
    scene["nodes"].append({"camera": 0, "translation": [0, 5, 7],
                           "rotation": [math.sin(tilt), 0, 0, math.cos(tilt)]})


def write(file, scene, blob):
    scene["buffers"] = [{"byteLength": len(blob)}]
    text = json.dumps(scene).encode()
    text += b" " * (-len(text) % 4)
    with open(file, "wb") as out:
        out.write(struct.pack("<4sII", b"glTF", 2, 12 + 8 + len(text) + 8 + len(blob)))
        out.write(struct.pack("<I4s", len(text), b"JSON") + text)
        out.write(struct.pack("<I4s", len(blob), b"BIN\0"))
        out.write(blob)


def main():
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("out")
    options.add_argument("--triangles", type=int, default=200_000)
    options.add_argument("--surfaces", type=int, default=1)
    options.add_argument("--lights", type=int, default=3)
    wanted = options.parse_args()
    scene = {"asset": {"version": "2.0"}, "scene": 0, "nodes": [], "meshes": [], "materials": [],
             "accessors": [], "bufferViews": []}
    blob = bytearray()
    add_ground(scene, blob, wanted.triangles, wanted.surfaces)
    add_lights(scene, wanted.lights)
    add_camera(scene)
    scene["scenes"] = [{"nodes": list(range(len(scene["nodes"])))}]
    write(wanted.out, scene, blob)


main()
