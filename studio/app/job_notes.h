#pragma once

#include <optional>

#include "studio/app/film.h"
#include "studio/app/picture_area.h"
#include "studio/app/requests.h"
#include "studio/render/image/picture_file.h"

namespace tavora::studio {

/// The metadata of a render's files, except the frame: the program's version, a digest of the
/// scene's files, a digest of everything else that the picture depends on (looks and settings,
/// the module, all options but those for threads, memory and messages), samples and camera.
/// Files with equal metadata have equal pictures. Throws Error when the module cannot be read.
PictureNotes notesOf(const RenderRequest& request, const PictureArea& area,
                     const PictureFormat& format, const FilmScene& scene, const Shading& shading);

/// The same for one frame.
PictureNotes notesOfFrame(const PictureNotes& notes, int frame);

}  // namespace tavora::studio
