#pragma once

#include <filesystem>
#include <span>

#include "studio/render/image/picture.h"
#include "studio/render/image/stored_picture.h"

/// Pictures in strips of whole rows, rendered one by one and put together.
namespace tavora::studio {

inline constexpr int kMostTiles = 10'000;

struct TileNumber {
    int number = 1;  ///< from 1 at the top
    int count = 1;   ///< at most the window's rows, and kMostTiles
};

/// The strip of a window that a tile is: as even as whole rows can be.
PixelBox stripOf(const PixelBox& window, const TileNumber& tile);

/// What a tile belongs to.
struct Tiling {
    TileNumber tile;
    int width = 0;  ///< of the whole picture
    int height = 0;
    PixelBox window;  ///< of the picture, which all tiles make together
};

/// Adds what makes a picture's file that of a tile.
void noteTile(const Tiling& tiling, PictureNotes& notes);

/// The picture that all these files are the tiles of: the same as one rendered undivided, to
/// the bit. Throws Error, Fault::Scene that names the file and what is wrong: no tile, of
/// another scene, job, version or frame, another format, given twice; or which is missing.
StoredPicture mergedTiles(std::span<const std::filesystem::path> files);

}  // namespace tavora::studio
