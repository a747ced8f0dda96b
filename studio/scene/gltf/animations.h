#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "studio/scene/animation/curve.h"
#include "studio/scene/gltf/document_pointer.h"
#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Describes the animations of a file, in the file's order. Throws Error for one that cannot
/// be played: when key times go backwards or are not finite, or when the type or number of
/// its values does not fit its keys and the property that it animates.
std::vector<AnimationInfo> readAnimations(const GltfSource& source);

/// Plays animations of a file: writes their values at a time into the file's document, from
/// which the scene is then made. One thread at a time.
class AnimationPlayer {
  public:
    /// All must outlive it, and the lists in the source's document must keep their sizes. A
    /// channel that cannot be played is reported in `warnings`, or in `notes` when it
    /// animates a property that is not read.
    AnimationPlayer(GltfSource& source, std::vector<std::string>& warnings,
                    std::vector<std::string>& notes)
        : source_(source), warnings_(warnings), notes_(notes) {}

    /// The animations that can be played together: the first, and each later one that
    /// animates no property that one of these before it animates.
    std::vector<std::size_t> compatible() const;

    /// Chooses the animations to play, by index, in place of those before. When two animate
    /// the same property, the later one counts. Resets the document to its rest values, which
    /// it has until setTime(). Throws Error.
    void play(std::span<const std::size_t> animations);

    /// Writes the values at a time, in seconds of the animations' keys, into the document.
    void setTime(double seconds);

    bool playsAny() const { return !tracks_.empty(); }
    bool animatesMaterials() const { return animatesMaterials_; }

  private:
    /// A curve, the member of the document that it animates, and that member's rest value.
    struct Track {
        Curve curve;
        gltf::MemberRef target;
        std::vector<double> rest;
    };

    void addTrack(const gltf::Animation& animation, std::size_t index, const std::string& where);
    bool canAnimate(const gltf::Pointer& pointer, const gltf::MemberRef& target,
                    const std::string& where);
    Curve readCurve(const gltf::AnimationSampler& sampler, std::size_t width,
                    const std::string& where) const;

    GltfSource& source_;
    std::vector<std::string>& warnings_;
    std::vector<std::string>& notes_;
    std::vector<Track> tracks_;
    bool animatesMaterials_ = false;
};

}  // namespace tavora::studio
