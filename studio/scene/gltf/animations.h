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

/// What the animations of a file are, in its order. Throws Error for one that
/// cannot be played: key times that go backwards or are no numbers, and values
/// that are of another type, or more or fewer, than the keys and what they move
/// ask for.
std::vector<AnimationInfo> readAnimations(const GltfSource& source);

/// Plays animations of a file: writes their values at a time into its document,
/// from which the scene is then made. One thread at a time.
class AnimationPlayer {
  public:
    /// `source` must outlive it; its lists must keep their sizes. What cannot be moved is
    /// told in `warnings`, or in `notes` where it is nothing that is read.
    AnimationPlayer(GltfSource& source, std::vector<std::string>& warnings,
                    std::vector<std::string>& notes)
        : source_(source), warnings_(warnings), notes_(notes) {}

    /// Animations that can play at once: the first, and each later one that moves
    /// nothing that one before it moves.
    std::vector<std::size_t> compatible() const;

    /// Plays these from now on and no others. Where two move the same, the later one
    /// counts. The document is at rest until setTime(). Throws Error.
    void play(std::span<const std::size_t> animations);

    /// Writes the values at a time, in seconds of the animations' own time.
    void setTime(double seconds);

    bool playsAny() const { return !tracks_.empty(); }
    bool movesMaterials() const { return movesMaterials_; }

  private:
    /// A curve and what it moves, with what that was before.
    struct Track {
        Curve curve;
        gltf::MemberRef target;
        std::vector<double> rest;
    };

    void addTrack(const gltf::Animation& animation, std::size_t index, const std::string& where);
    bool canMove(const gltf::Pointer& pointer, const gltf::MemberRef& target,
                 const std::string& where);
    Curve readCurve(const gltf::AnimationSampler& sampler, std::size_t width,
                    const std::string& where) const;

    GltfSource& source_;
    std::vector<std::string>& warnings_;
    std::vector<std::string>& notes_;
    std::vector<Track> tracks_;
    bool movesMaterials_ = false;
};

}  // namespace tavora::studio
