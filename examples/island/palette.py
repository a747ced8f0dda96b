"""The colours of the picture, as a screen shows them, and the widths of its ink.

Late light: warm where the sun falls, blue and violet where it does not (the looks
see to that), red and cream for what people made, one ink for all.

The rule of the ink: whatever stands on the island or floats near it has an outline,
broad around large things and fine around small ones. What is far away, hills and
clouds, has none. So the ink itself tells near from far.
"""

INK = '#1d1b38'
BROAD, FINE, HAIR = 0.034, 0.02, 0.013  # metres: two pixels, one, and just one

CREAM, WHITE = '#fdf1d8', '#fffaf0'
RED, DEEP_RED, CORAL, AMBER = '#e0483b', '#b5342f', '#f2704f', '#f7b24a'
NAVY, TEAL = '#27385f', '#3d7f86'
GLOW, PALE_GLOW, HAZE, LAMP, WINDOW = '#ffdc82', '#e9f1ec', '#bcdcea', '#fff6d2', '#ffcf5c'

GRASS, MEADOW, MOSS, PINE, LEAF = '#8fbb55', '#a9cb62', '#6d9c4c', '#3f8560', '#7fae4e'
SAND, WET_SAND, PATH = '#f3d39a', '#c9a377', '#efd3a0'
ROCK, PALE_ROCK, DARK_ROCK = '#a99a96', '#c2b1a6', '#7f7681'
WOOD, DARK_WOOD, PLANK, PALE_PLANK = '#9a6a45', '#74503c', '#cf9f68', '#dcb27c'
PLASTER, STONE, SMOKE = '#fbeacb', '#b9a79a', '#efe0dc'
TILES, TILE_GAP = ('#d9673f', '#cf5a39', '#e07749'), '#8e3a30'

SKIN, BEAK, FEATHERS = '#f2b48c', '#f39a3c', '#a9b4c8'
FOAM = '#f8efdc'
