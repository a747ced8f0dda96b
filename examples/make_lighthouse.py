#!/usr/bin/env python3
"""Builds examples/lighthouse.glb, the scene of the demo picture.

Everything in it is made here and in the modules beside: shapes, colours, lights
and cameras. Run it from anywhere; it needs Python 3 alone. The shader settings of
the surfaces are stored afterwards by scripts/make-example.
"""

import math
import sys
from pathlib import Path

from island import picture
from island.buildings import COTTAGE, LIGHTHOUSE, cottage, fences, jetty, keeper, lighthouse, on_jetty, washing
from island.glb import Glb
from island.glow import glow
from island.land import land, on_ground
from island.shapes import linear
from island.sky import perched_gull, sky
from island.vectors import aimed
from island.water import water

INKED = ('Ground', 'Cliff', 'Rock', 'Tower', 'Gallery', 'Dome', 'Cottage', 'Chimney', 'Roof', 'Planks', 'Wood',
         'Fence', 'Leaves', 'Flowers', 'Cloth', 'Figure', 'Hull', 'Mast', 'Sail', 'Buoy', 'Gull')
SHADED = ('Sea', 'Ripples', 'Foam', 'Blades', 'Iron', 'Smoke')
PAINTED = ('Sky', 'Hills', 'Clouds', 'Window Light', 'Lamp')
CLEAR = ('Halo', 'Beam')


def materials(glb):
    for name in INKED:
        glb.material(name, extras={'tavora': {'selfShadow': False}})
    for name in SHADED:
        glb.material(name)
    for name in PAINTED:
        glb.material(name, extensions={'KHR_materials_unlit': {}})
    for name in CLEAR:
        glb.material(name, alphaMode='BLEND', extensions={'KHR_materials_unlit': {}})


PATHS = ((((-0.9, -4.95), (-0.3, -5.6), (0.5, -6.0), (1.6, -6.1), (2.6, -6.5), (3.1, -7.2), (3.45, -7.75)), 0.5),
         (((0.5, -6.0), (0.75, -6.4), (0.95, -6.75)), 0.4))


def lights_and_cameras(glb):
    glb.doc['extensions'] = {'KHR_lights_punctual': {'lights': [
        {'name': 'Sun', 'type': 'directional', 'color': linear('#fff0cf')[:3], 'intensity': 3.0}]}}
    glb.node('Sun', translation=[-20, 16, 12], rotation=aimed(SUN),
             extensions={'KHR_lights_punctual': {'light': 0}})
    glb.doc['cameras'] = [
        {'name': 'Shore', 'type': 'perspective',
         'perspective': {'yfov': picture.HEIGHT, 'znear': 0.1, 'zfar': 4000}},
        {'name': 'Chart', 'type': 'orthographic',
         'orthographic': {'xmag': 16, 'ymag': 9, 'znear': 0.1, 'zfar': 60}}]
    glb.node('Shore', translation=list(picture.EYE), rotation=aimed(picture.AHEAD), camera=0)
    glb.node('Chart', translation=[1, 30, -6], rotation=aimed((0, -1, 0)), camera=1)
    glb.doc['scenes'][0]['extras'] = {'tavora': {'ambient': [0.16, 0.16, 0.18]}}


SUN = (0.74, -0.5, -0.46)


def main():
    target = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).with_name('lighthouse.glb')
    glb = Glb('Lighthouse')
    materials(glb)
    sky(glb)
    land(glb, PATHS)
    tower, lamp = lighthouse(glb)
    glow(glb, tower, lamp)
    cottage(glb)
    jetty(glb)
    fences(glb)
    washing(glb, (-3.0, -7.2), (-1.15, -6.55))
    keeper(glb, on_jetty(3.3), -40)
    perched_gull(glb, (-6.75, 0.36, -0.85), 62)
    water(glb)
    lights_and_cameras(glb)
    glb.write(target)


if __name__ == '__main__':
    main()
