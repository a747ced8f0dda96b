#include "studio/render/image/stored_picture.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <tuple>

#include "studio/render/image/exr_header.h"
#include "studio/render/image/exr_rows.h"
#include "studio/render/image/picture_file.h"
#include "studio/render/image/picture_tiles.h"
#include "studio/render/image/png_rows.h"
#include "studio/util/error.h"
#include "tests/files/temporary_folder.h"

namespace tavora::studio {
namespace {

using Kind = PictureFormat::Kind;

const PictureNotes kNotes{{"Software", "tavora 1"},
                          {"tavora:camera",
                           "K\xc3\xbc"
                           "che\nleft"},
                          {"tavora:frame", "-3"},
                          {"tavora:scene", ""}};

const std::vector<PictureFormat> kFormats{{Kind::Png, PictureDepth::Eight, false},
                                          {Kind::Png, PictureDepth::Sixteen, true},
                                          {Kind::Exr, PictureDepth::Half, true},
                                          {Kind::Exr, PictureDepth::Float, false}};

// More rows than an EXR has in a chunk, values that no level or half stands for.
Picture somePicture() {
    Picture picture{9, 40, {2, 1, 8, 38}, {}};
    for (std::size_t i = 0; i < 6 * 37 * 4; ++i)
        picture.rgba.push_back(static_cast<float>(i * 7919 % 1009) / 1009);
    return picture;
}

// Of a file's bytes, without one being written for each.
bool decode(const std::string& bytes, const PictureFormat& format, StoredPicture& picture) {
    return format.kind == Kind::Png ? decodePng(bytes, picture) : decodeExr(bytes, picture);
}

TEST(StoredPicture, KeepsValuesWindowsAndNotesFromFileToFile) {
    for (const PictureFormat& format : kFormats) {
        const std::string bytes = encodePicture(somePicture(), format, kNotes);
        EXPECT_EQ(bytes.find("iTXttavora:camera") != std::string::npos, format.kind == Kind::Png);
        StoredPicture stored;
        ASSERT_TRUE(decode(bytes, format, stored));
        EXPECT_EQ(stored.format, format);
        EXPECT_EQ(stored.notes, kNotes);
        if (format.kind == Kind::Exr) {
            EXPECT_EQ(std::tie(stored.width, stored.height), std::tuple(9, 40));
            EXPECT_EQ(stored.window, somePicture().window);
        }
        EXPECT_EQ(encodeStored(stored), bytes);
    }
}

TEST(StoredPicture, RefusesFilesThatBreakOffAnywhereOrGoOn) {
    for (const PictureFormat& format : kFormats) {
        const std::string longer = encodePicture(somePicture(), format, kNotes) + '\0';
        for (std::size_t size = 0; size <= longer.size(); ++size) {
            StoredPicture picture;
            EXPECT_EQ(decode(longer.substr(0, size), format, picture), size + 1 == longer.size())
                << size;
        }
    }
}

// Checksums find all damage to a PNG; an EXR has none over its header nor where a chunk's
// bytes are stored as they are.
TEST(StoredPicture, RefusesDamageWhereverItCanBeSeen) {
    for (const PictureFormat& format : kFormats) {
        const std::string whole = encodePicture(somePicture(), format, kNotes);
        for (std::size_t i = 0; i < whole.size(); ++i) {
            std::string damaged = whole;
            damaged[i] = static_cast<char>(~damaged[i]);
            StoredPicture picture;
            if (!decode(damaged, format, picture)) continue;
            EXPECT_EQ(format.kind, Kind::Exr) << i;
            EXPECT_EQ(picture.window, somePicture().window) << i;
        }
    }
}

std::int64_t peakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST(StoredPicture, TakesNoMemoryForWhatAnExrHeaderMerelyPromises) {
    const std::string whole = encodePicture(somePicture(), kFormats.back(), kNotes);
    ASSERT_TRUE(isSoundExrHeader(whole));
    const auto refuses = [&](const std::string& before, std::size_t offset, std::int32_t number) {
        std::string damaged = whole;
        const std::size_t at = damaged.find(before);
        ASSERT_NE(at, std::string::npos);
        std::memcpy(&damaged[at + before.size() + offset], &number, sizeof number);
        StoredPicture picture;
        EXPECT_FALSE(isSoundExrHeader(damaged)) << before << offset;
        EXPECT_FALSE(decodeExr(damaged, picture)) << before << offset;
    };
    const std::int64_t atFirst = peakKilobytes();
    refuses({"tavora:frame\0string\0", 20}, 0, 0x7fffffff);
    refuses({"lineOrder\0lineOrder\0", 20}, 0, 40);
    refuses({"lineOrder\0lineO", 15}, 0, 0x21212121);
    refuses({"channels\0chlist\0", 16}, 5, 0x21212121);
    const std::string window("dataWindow\0box2i\0\x10\0\0\0", 21);
    refuses(window, 8, 1 << 30);
    refuses(window, 12, 1 << 30);
    refuses(window, 8, 1);
    EXPECT_LT(peakKilobytes() - atFirst, 500'000);
}

TEST(PictureTiles, AreRefusedWhereTheirNotesContradictThemselvesOrThePicture) {
    const TemporaryFolder folder;
    const std::array files{folder / "a"};
    PictureFormat format = kFormats.back();
    const auto isTile = [&](const char* tile, const char* whole) {
        writePicture(somePicture(), files[0], format,
                     {{"tavora:tile", tile}, {"tavora:whole", whole}});
        try {
            mergedTiles(files);
            return true;
        } catch (const Error& error) {
            EXPECT_EQ(error.fault(), Fault::Scene);
            return false;
        }
    };
    EXPECT_TRUE(isTile("1/1", "9x40 2,1,8,38"));
    for (const char* tile : {"", "1", "0/1", "2/1", "1/0", "1/1x", "4294967297/1", "1/99"})
        EXPECT_FALSE(isTile(tile, "9x40 2,1,8,38")) << tile;
    for (const char* whole : {"9x40", "9x40 1,1,7,38", "9x41 2,1,8,38", "9x40 2,1,8,39",
                              "9x40 2,1,8,-2147483648", "9x40 8,1,2,38", "7x40 2,1,8,38"})
        EXPECT_FALSE(isTile("1/1", whole)) << whole;
    format = kFormats.front();
    EXPECT_TRUE(isTile("1/1", "9x40 2,1,8,38"));
    EXPECT_FALSE(isTile("1/1", "9x40 2,1,8,39")) << "which a PNG tells by its size alone";
}

}  // namespace
}  // namespace tavora::studio
