#!/usr/bin/env python3
"""Builds examples/lighthouse.glb, the scene of the demo picture.

Everything in it is made here and in island/: shapes, colours, lights and cameras.
Run it from anywhere; it needs Python 3 alone, and writes the same bytes each time.
The shader settings of the surfaces are stored afterwards by scripts/make-example.
"""

import sys
from pathlib import Path

from island import picture
from island.boats import boats
from island.cottage import cottage
from island.fish import fish
from island.foam import foam
from island.glb import Glb
from island.gulls import gulls
from island.land import land
from island.lighthouse import lighthouse
from island.people import fence, jetty, keeper, washing
from island.plants import plants
from island.sea import sea
from island.shapes import linear
from island.sky import sky
from island.vectors import aimed

# With an outline of their own material; without; always in their own colour; clear.
INKED = ('Ground', 'Cliff', 'Rock', 'Tower', 'Gallery', 'Dome', 'Cottage', 'Chimney', 'Roof', 'Planks', 'Wood',
         'Fence', 'Leaves', 'Flowers', 'Cloth', 'Figure', 'Hull', 'Mast', 'Sail', 'Buoy', 'Gull')
SHADED = ('Sea', 'Ripples', 'Foam', 'Blades', 'Iron', 'Smoke')
PAINTED = ('Sky', 'Hills', 'Clouds', 'Window Light', 'Lamp')
CLEAR = ('Halo', 'Beam')

SUNLIGHT = (0.74, -0.5, -0.46)  # low, from the left, over the viewer's shoulder


def materials(glb):
    for name in INKED:
        glb.material(name, extras={'tavora': {'selfShadow': False}})
    for name in SHADED:
        glb.material(name)
    unlit = {'KHR_materials_unlit': {}}
    for name in PAINTED:
        glb.material(name, extensions=unlit)
    for name in CLEAR:
        glb.material(name, alphaMode='BLEND', extensions=unlit, extras={'tavora': {'castsShadows': False}})


def light_and_cameras(glb):
    glb.doc['extensions'] = {'KHR_lights_punctual': {'lights': [
        {'name': 'Sun', 'type': 'directional', 'color': linear('#fff0cf')[:3], 'intensity': 3.0}]}}
    glb.node('Sun', translation=[-20, 16, 12], rotation=aimed(SUNLIGHT),
             extensions={'KHR_lights_punctual': {'light': 0}})
    glb.doc['scenes'][0]['extras'] = {'tavora': {'ambient': [0.16, 0.16, 0.18]}}
    glb.doc['cameras'] = [
        {'name': 'Shore', 'type': 'perspective',
         'perspective': {'yfov': picture.HEIGHT, 'znear': 0.1, 'zfar': 4000}},
        {'name': 'Chart', 'type': 'orthographic',
         'orthographic': {'xmag': 16, 'ymag': 9, 'znear': 0.1, 'zfar': 60}}]
    glb.node('Shore', translation=picture.EYE, rotation=aimed(picture.AHEAD), camera=0)
    glb.node('Chart', translation=[1, 30, -6], rotation=aimed((0, -1, 0)), camera=1)


def main():
    target = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).with_name('lighthouse.glb')
    glb = Glb('Lighthouse')
    materials(glb)
    for make in (sky, sea, land, plants, lighthouse, cottage, jetty, fence, washing, keeper, boats, foam, gulls, fish):
        make(glb)
    light_and_cameras(glb)
    glb.write(target)


if __name__ == '__main__':
    main()
