#pragma once

#include <optional>

#include "studio/app/film.h"
#include "studio/app/picture_area.h"
#include "studio/app/requests.h"
#include "studio/render/image/picture_file.h"

namespace tavora::studio {

/// What the files of a render say of how they were made, all but the frame: the program's
/// version, digests of the scene's files and of all that the picture depends on beside it
/// (looks and settings, the module, every option but those of threads, memory and messages),
/// samples and camera. Equal notes stand for equal pictures. Throws Error where the module
/// cannot be read.
PictureNotes notesOf(const RenderRequest& request, const PictureArea& area,
                     const PictureFormat& format, const FilmScene& scene, const Shading& shading);

/// The same for one frame.
PictureNotes notesOfFrame(const PictureNotes& notes, int frame);

}  // namespace tavora::studio
