#include "studio/scene/gltf/animations.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <set>

#include "studio/scene/gltf/accessor.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

/// The key times of an accessor, in seconds.
struct Keys {
    std::size_t count = 0;
    double first = 0;
    double last = 0;
};

/// Reads the animations of one file.
class AnimationReader {
  public:
    explicit AnimationReader(const GltfSource& source) : source_(source) {}

    AnimationInfo read(const gltf::Animation& animation, std::size_t index) {
        AnimationInfo info;
        info.name = animation.name;
        info.channels = animation.channels.size();
        bool hasKeys = false;
        for (const gltf::AnimationSampler& sampler : animation.samplers) {
            const Keys& keys = keysOf(sampler.input);
            if (keys.count == 0) continue;
            info.start = hasKeys ? std::min(info.start, keys.first) : keys.first;
            info.end = std::max(info.end, keys.last);
            hasKeys = true;
        }
        for (std::size_t i = 0; i < animation.channels.size(); ++i)
            checkChannel(animation, i, fmt::format("animations[{}].channels[{}]", index, i));
        return info;
    }

  private:
    const Keys& keysOf(int accessor) {
        const auto [entry, isNew] = keys_.try_emplace(accessor);
        if (!isNew) return entry->second;
        const std::vector<float> times = readFloats(source_, accessor, 1, 1).values;
        const auto back = std::is_sorted_until(times.begin(), times.end());
        if (back != times.end()) {
            source_.fail(fmt::format(
                "the key times in accessor {} go backwards at element {}: export the file again",
                accessor, back - times.begin()));
        }
        if (!times.empty()) entry->second = {times.size(), times.front(), times.back()};
        return entry->second;
    }

    void checkChannel(const gltf::Animation& animation, std::size_t index,
                      const std::string& where) {
        const gltf::AnimationChannel& channel = animation.channels[index];
        const gltf::AnimationSampler& sampler = gltf::at(animation.samplers, channel.sampler);
        const bool cubic = sampler.interpolation == Interpolation::CubicSpline;
        const std::size_t keys = keysOf(sampler.input).count * (cubic ? 3 : 1);
        const gltf::Accessor& values = gltf::at(source_.document.accessors, sampler.output);
        checkCount(source_, sampler.output);
        const char* type = typeOf(channel.target.path);
        if (type != nullptr && values.type != type) {
            source_.fail(
                fmt::format("{} moves what takes a {} each, but its accessor {} has a {}: "
                            "export the file again",
                            where, type, sampler.output, shortened(values.type)));
        }
        const std::size_t each = valuesPerKey(channel.target);
        const bool fits =
            each != 0 || keys == 0 ? values.count == keys * each : values.count % keys == 0;
        if (fits) return;
        source_.fail(
            fmt::format("{} has {} values in accessor {} for its {} keys{}: export the "
                        "file again",
                        where, values.count, sampler.output, keysOf(sampler.input).count,
                        cubic ? ", three a key" : ""));
    }

    /// The type that an accessor's elements must have; null when it may be any.
    static const char* typeOf(gltf::TargetPath path) {
        switch (path) {
            case gltf::TargetPath::Translation:
            case gltf::TargetPath::Scale:
                return "VEC3";
            case gltf::TargetPath::Rotation:
                return "VEC4";
            case gltf::TargetPath::Weights:
                return "SCALAR";
            case gltf::TargetPath::Pointer:
            case gltf::TargetPath::Other:
                return nullptr;
        }
        return nullptr;
    }

    /// How many elements one key sets; 0 when any number may be right.
    std::size_t valuesPerKey(const gltf::AnimationTarget& target) const {
        if (target.path == gltf::TargetPath::Weights) return morphTargetsOf(target.node);
        return typeOf(target.path) != nullptr ? 1 : 0;
    }

    std::size_t morphTargetsOf(int node) const {
        if (node == gltf::kNone) return 0;
        const int mesh = gltf::at(source_.document.nodes, node).mesh;
        if (mesh == gltf::kNone) return 0;
        const auto& primitives = gltf::at(source_.document.meshes, mesh).primitives;
        return primitives.empty() ? 0 : primitives.front().targets.size();
    }

    const GltfSource& source_;
    std::map<int, Keys> keys_;  // by accessor
};

/// The pointer to the member of the document that a channel animates; empty when it has no
/// target.
gltf::Pointer pointerOf(const gltf::AnimationTarget& target) {
    if (target.path == gltf::TargetPath::Pointer) return *target.pointer;
    const char* member = nullptr;
    if (target.path == gltf::TargetPath::Translation) member = "translation";
    if (target.path == gltf::TargetPath::Rotation) member = "rotation";
    if (target.path == gltf::TargetPath::Scale) member = "scale";
    if (target.path == gltf::TargetPath::Weights) member = "weights";
    if (member == nullptr || target.node == gltf::kNone) return {};
    return {{"nodes", std::to_string(target.node), member}};
}

std::string textOf(const gltf::Pointer& pointer) {
    std::string text;
    for (const std::string& token : pointer.tokens)
        text += "/" + token;
    return shortened(text);
}

/// Whether a pointer points at an element that a list of the file does not have, or at an
/// unknown top-level member. Other pointers may point at members that are not read.
bool pointsOutOfRange(const gltf::Json& json, const gltf::Pointer& pointer) {
    const gltf::Json* value = &json;
    for (const std::string& token : pointer.tokens) {
        if (value->is_array()) {
            const bool isIndex = !token.empty() && token.size() < 10 &&
                                 token.find_first_not_of("0123456789") == std::string::npos;
            if (!isIndex || std::stoul(token) >= value->size()) return true;
            value = &(*value)[std::stoul(token)];
        } else {
            const auto next = value->is_object() ? value->find(token) : value->end();
            if (next == value->end()) return value == &json;
            value = &*next;
        }
    }
    return false;
}

/// Whether a pointer points at the one kind of member that is a quaternion.
bool isRotation(const gltf::Pointer& pointer) {
    return pointer.tokens.size() == 3 && pointer.tokens[0] == "nodes" &&
           pointer.tokens[2] == "rotation";
}

/// Whether a pointer points into an avatar's shading, which is converted to shader settings
/// once, before a film, and so cannot be animated.
bool isToonMember(const gltf::Pointer& pointer) {
    const auto& tokens = pointer.tokens;
    return std::find(tokens.begin(), tokens.end(), "VRMC_materials_mtoon") != tokens.end();
}

std::vector<double> valueOf(const gltf::MemberRef& member) {
    if (member.flag != nullptr) return {*member.flag ? 1.0 : 0.0};
    if (member.list != nullptr) return *member.list;
    return {member.numbers.begin(), member.numbers.end()};
}

void setValue(const gltf::MemberRef& member, std::span<const double> value) {
    if (member.flag != nullptr) {
        *member.flag = value.front() != 0;
    } else if (member.list != nullptr) {
        member.list->assign(value.begin(), value.end());
    } else {
        std::copy(value.begin(), value.end(), member.numbers.begin());
    }
}

}  // namespace

std::vector<AnimationInfo> readAnimations(const GltfSource& source) {
    std::vector<AnimationInfo> infos;
    AnimationReader reader(source);
    for (const gltf::Animation& animation : source.document.animations)
        infos.push_back(reader.read(animation, infos.size()));
    return infos;
}

std::vector<std::size_t> AnimationPlayer::compatible() const {
    std::vector<std::size_t> result;
    std::set<std::vector<std::string>> animated;
    const std::vector<gltf::Animation>& animations = source_.document.animations;
    for (std::size_t i = 0; i < animations.size(); ++i) {
        std::set<std::vector<std::string>> targets;
        for (const gltf::AnimationChannel& channel : animations[i].channels)
            targets.insert(pointerOf(channel.target).tokens);
        targets.erase(std::vector<std::string>());
        const bool isFree = std::none_of(targets.begin(), targets.end(), [&](const auto& target) {
            return animated.contains(target);
        });
        if (!isFree) continue;
        animated.merge(targets);
        result.push_back(i);
    }
    return result;
}

void AnimationPlayer::play(std::span<const std::size_t> animations) {
    for (const Track& track : tracks_)
        setValue(track.target, track.rest);
    tracks_.clear();
    animatesMaterials_ = false;
    for (const std::size_t index : animations) {
        const gltf::Animation& animation = source_.document.animations[index];
        for (std::size_t i = 0; i < animation.channels.size(); ++i)
            addTrack(animation, i, fmt::format("animations[{}].channels[{}]", index, i));
    }
}

void AnimationPlayer::addTrack(const gltf::Animation& animation, std::size_t index,
                               const std::string& where) {
    const gltf::AnimationChannel& channel = animation.channels[index];
    const gltf::AnimationSampler& sampler = gltf::at(animation.samplers, channel.sampler);
    const gltf::Pointer pointer = pointerOf(channel.target);
    Track track;
    track.target = memberAt(source_.document, pointer);
    if (!canAnimate(pointer, track.target, where)) return;
    const std::size_t keys = elementCount(source_, sampler.input);
    if (keys == 0) return;
    track.rest = valueOf(track.target);
    std::size_t width = track.rest.size();
    if (track.target.list != nullptr) {
        const std::size_t perKey = sampler.interpolation == Interpolation::CubicSpline ? 3 : 1;
        width = elementCount(source_, sampler.output) / (keys * perKey);
        if (width == 0) return;
    }
    track.curve = readCurve(sampler, width, where);
    track.curve.isRotation = isRotation(pointer);
    animatesMaterials_ = animatesMaterials_ || pointer.tokens[0] == "materials";
    tracks_.push_back(std::move(track));
}

bool AnimationPlayer::canAnimate(const gltf::Pointer& pointer, const gltf::MemberRef& target,
                                 const std::string& where) {
    const std::string line = oneLine(source_.path + ": " + where);
    if (pointer.tokens.empty()) {
        warnings_.push_back(line + " names nothing that it moves and is left out");
    } else if (!target.exists() || isToonMember(pointer)) {
        if (pointsOutOfRange(source_.json, pointer)) {
            warnings_.push_back(fmt::format("{} moves {}, which the file has not, and is left out",
                                            line, textOf(pointer)));
        } else {
            notes_.push_back(fmt::format("{} moves {}, which is not drawn", line, textOf(pointer)));
        }
    } else if (pointer.tokens[0] == "nodes" && pointer.tokens[2] != "weights" &&
               target.flag == nullptr &&
               gltf::at(source_.document.nodes, std::stoi(pointer.tokens[1])).matrix) {
        warnings_.push_back(fmt::format(
            "{} moves node {}, which is placed by a matrix that nothing moves, and is left out",
            line, pointer.tokens[1]));
    } else {
        return true;
    }
    return false;
}

Curve AnimationPlayer::readCurve(const gltf::AnimationSampler& sampler, std::size_t width,
                                 const std::string& where) const {
    Curve curve;
    curve.interpolation = sampler.interpolation;
    curve.width = width;
    curve.times = readFloats(source_, sampler.input, 1, 1).values;
    curve.values = readFloats(source_, sampler.output, 1, 16).values;
    const std::size_t perKey = curve.interpolation == Interpolation::CubicSpline ? 3 : 1;
    if (curve.values.size() == curve.times.size() * perKey * width) return curve;
    source_.fail(fmt::format(
        "{} has {} numbers in accessor {} for its {} keys of {}: export the "
        "file again",
        where, curve.values.size(), sampler.output, curve.times.size() * perKey, width));
}

void AnimationPlayer::setTime(double seconds) {
    std::vector<double> value;
    for (const Track& track : tracks_) {
        value.resize(track.curve.width);
        track.curve.sample(seconds, value);
        setValue(track.target, value);
    }
}

}  // namespace tavora::studio
