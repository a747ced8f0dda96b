#include "studio/render/image/picture_tiles.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fmt/format.h>
#include <string>
#include <vector>

#include "studio/util/error.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;

constexpr const char* kTile = "tavora:tile";
constexpr const char* kWhole = "tavora:whole";

std::string noteOf(const PictureNotes& notes, const char* name) {
    const auto found = notes.find(name);
    return found == notes.end() ? std::string() : found->second;
}

/// What the notes say; false for those of no tile.
bool readTiling(const PictureNotes& notes, Tiling& tiling) {
    const std::string tile = noteOf(notes, kTile);
    const std::string whole = noteOf(notes, kWhole);
    PixelBox& w = tiling.window;
    const bool isRead =
        std::sscanf(tile.c_str(), "%d/%d", &tiling.tile.number, &tiling.tile.count) == 2 &&
        std::sscanf(whole.c_str(), "%dx%d %d,%d,%d,%d", &tiling.width, &tiling.height, &w.left,
                    &w.top, &w.right, &w.bottom) == 6;
    PictureNotes written;  // numbers too large, or with something behind them, come out as others
    noteTile(tiling, written);
    return isRead && noteOf(written, kTile) == tile && noteOf(written, kWhole) == whole &&
           tiling.tile.number >= 1 && tiling.tile.number <= tiling.tile.count && w.left >= 0 &&
           w.top >= 0 && w.left < w.right && w.right <= tiling.width && w.top < w.bottom &&
           w.bottom <= tiling.height && tiling.tile.count <= std::min(w.height(), kMostTiles);
}

[[noreturn]] void fail(const fs::path& file, const std::string& what) {
    throw Error(Fault::Scene, fmt::format("{}: {}", file.string(), what));
}

struct Tile {
    fs::path file;
    StoredPicture picture;
    Tiling tiling;
};

Tile readTile(const fs::path& file) {
    Tile tile{file, readStoredPicture(file), {}};
    if (!readTiling(tile.picture.notes, tile.tiling))
        fail(file, "is no tile: render it with --tile I/N");
    const PixelBox strip = stripOf(tile.tiling.window, tile.tiling.tile);
    const StoredPicture& picture = tile.picture;
    const PixelBox& window = picture.window;
    const bool isPlaced = picture.format.kind == PictureFormat::Kind::Png ||
                          (window == strip && picture.width == tile.tiling.width &&
                           picture.height == tile.tiling.height);
    if (!isPlaced || window.width() != strip.width() || window.height() != strip.height())
        fail(file, "has not the size of its tile: render it again");
    return tile;
}

/// What the user calls a note.
std::string meaningOf(const std::string& name) {
    if (name == "Software") return "version";
    return name.starts_with("tavora:") ? name.substr(name.find(':') + 1) : name;
}

/// Whether two tiles are of one picture; else throws.
void checkAlike(const Tile& first, const Tile& other) {
    if (!(first.picture.format == other.picture.format)) {
        fail(other.file, fmt::format("is of another format, depth or transparency than {}: merge "
                                     "the tiles of one render",
                                     first.file.string()));
    }
    PictureNotes a = first.picture.notes;
    PictureNotes b = other.picture.notes;
    for (PictureNotes* notes : {&a, &b}) {  // the number may differ, not how many there are
        std::string& tile = (*notes)[kTile];
        tile = tile.substr(tile.find('/'));
    }
    for (const PictureNotes* notes : {&a, &b}) {
        for (const auto& [name, text] : *notes) {
            const std::string mine = noteOf(a, name.c_str());
            const std::string theirs = noteOf(b, name.c_str());
            if (mine == theirs) continue;
            fail(other.file, fmt::format("is a tile of another picture than {}: its {} is {}, not "
                                         "{}; merge the tiles of one render",
                                         first.file.string(), meaningOf(name), shortened(theirs),
                                         shortened(mine)));
        }
    }
}

}  // namespace

PixelBox stripOf(const PixelBox& window, const TileNumber& tile) {
    const auto edge = [&](int number) {
        const std::int64_t rows = window.height();
        return window.top + static_cast<int>(rows * number / tile.count);
    };
    return {window.left, edge(tile.number - 1), window.right, edge(tile.number)};
}

void noteTile(const Tiling& tiling, PictureNotes& notes) {
    const PixelBox& w = tiling.window;
    notes[kTile] = fmt::format("{}/{}", tiling.tile.number, tiling.tile.count);
    notes[kWhole] = fmt::format("{}x{} {},{},{},{}", tiling.width, tiling.height, w.left, w.top,
                                w.right, w.bottom);
}

StoredPicture mergedTiles(std::span<const fs::path> files) {
    std::vector<Tile> tiles;
    for (const fs::path& file : files) {
        Tile tile = readTile(file);
        if (tiles.empty()) tiles.resize(static_cast<std::size_t>(tile.tiling.tile.count));
        for (const Tile& other : tiles) {
            if (other.file.empty()) continue;
            checkAlike(other, tile);
            break;
        }
        Tile& place = tiles[static_cast<std::size_t>(tile.tiling.tile.number - 1)];
        if (!place.file.empty()) {
            fail(file, fmt::format("is tile {} again, as {}: leave one out",
                                   tile.tiling.tile.number, place.file.string()));
        }
        place = std::move(tile);
    }
    std::string missing;
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        if (tiles[i].file.empty())
            missing += fmt::format("{}{}", missing.empty() ? "" : ", ", i + 1);
    }
    if (!missing.empty()) {
        fail(files.front(), fmt::format("is one of {} tiles, but these are missing: {}; render "
                                        "them with --tile I/{}",
                                        tiles.size(), shortened(missing), tiles.size()));
    }
    StoredPicture whole = std::move(tiles.front().picture);
    const Tiling& tiling = tiles.front().tiling;
    whole.window = tiling.window;
    if (whole.format.kind == PictureFormat::Kind::Exr) {
        whole.width = tiling.width;
        whole.height = tiling.height;
    }
    for (std::size_t i = 1; i < tiles.size(); ++i)
        whole.rows += tiles[i].picture.rows;
    whole.notes.erase(kTile);
    whole.notes.erase(kWhole);
    return whole;
}

}  // namespace tavora::studio
