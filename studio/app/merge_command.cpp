#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>
#include <vector>

#include "studio/app/commands.h"
#include "studio/files/standard_streams.h"
#include "studio/files/whole_file.h"
#include "studio/render/image/picture_file.h"
#include "studio/render/image/picture_tiles.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

/// Tiles are merged without conversion, so the output must have their format.
void checkFormat(const std::string& output, const PictureFormat& format) {
    if (isStream(output)) return;
    try {
        pictureFormat(output, format.depth, format.alpha);  // by the suffix, which has other depths
    } catch (const std::invalid_argument&) {
        const bool isPng = format.kind == PictureFormat::Kind::Png;
        throw Error(Fault::Usage, fmt::format("-o {}: the tiles are {} files, and so must this be",
                                              output, isPng ? ".png" : ".exr"));
    }
}

}  // namespace

void merge(const MergeRequest& request, Report& report) {
    isStream(request.output) ? checkStandardOutput() : checkWritable(request.output);
    const std::vector<std::filesystem::path> files(request.tiles.begin(), request.tiles.end());
    const StoredPicture picture = mergedTiles(files);
    checkFormat(request.output, picture.format);
    const std::string bytes = encodeStored(picture);
    if (isStream(request.output)) return writeOut(bytes);
    writeWholeFile(request.output, bytes);
    report.note(1, fmt::format("{} written", request.output));
}

}  // namespace tavora::studio
