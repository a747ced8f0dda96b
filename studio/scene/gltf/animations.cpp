#include "studio/scene/gltf/animations.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

#include "studio/scene/gltf/accessor.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

/// The keys of an accessor of times, in seconds.
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
        bool known = false;
        for (const gltf::AnimationSampler& sampler : animation.samplers) {
            const Keys& keys = keysOf(sampler.input);
            if (keys.count == 0) continue;
            info.start = known ? std::min(info.start, keys.first) : keys.first;
            info.end = std::max(info.end, keys.last);
            known = true;
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
        const bool cubic = sampler.interpolation == gltf::Interpolation::CubicSpline;
        const std::size_t keys = keysOf(sampler.input).count * (cubic ? 3 : 1);
        const gltf::Accessor& values = gltf::at(source_.document.accessors, sampler.output);
        checkBacked(source_, sampler.output);
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

    /// Of an accessor's elements; null where it may be any.
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

    /// Elements that one key sets; 0 where that is not known.
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

}  // namespace

std::vector<AnimationInfo> readAnimations(const GltfSource& source) {
    std::vector<AnimationInfo> infos;
    AnimationReader reader(source);
    for (const gltf::Animation& animation : source.document.animations)
        infos.push_back(reader.read(animation, infos.size()));
    return infos;
}

}  // namespace tavora::studio
