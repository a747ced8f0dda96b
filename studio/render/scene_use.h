#pragma once

namespace tavora::studio {

/// What a scene's acceleration structure is built for: the quickest rays, or to be brought
/// up to date from frame to frame. Pictures are the same.
enum class SceneUse { Still, Film };

}  // namespace tavora::studio
