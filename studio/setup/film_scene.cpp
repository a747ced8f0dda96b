#include "studio/setup/film_scene.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <set>

#include "studio/scene/framing/default_view.h"
#include "studio/setup/scene_view.h"
#include "studio/util/error.h"
#include "studio/util/glob.h"
#include "studio/util/nearest_name.h"
#include "studio/util/some_names.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

/// The number of times at which a film is measured, evenly distributed over its range.
constexpr int kMeasurements = 17;

/// The index below `count` that `text` is, if it is one.
std::optional<std::size_t> indexIn(const std::string& text, std::size_t count) {
    std::size_t index = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, index);
    if (error != std::errc() || stop != end || index >= count) return {};
    return index;
}

/// The animations that match `name` as a name or pattern; if none does, the one of that index.
std::vector<std::size_t> matchingAnimations(const Scene& scene, const std::string& name) {
    std::vector<std::size_t> found;
    std::vector<std::string> names;
    for (std::size_t i = 0; i < scene.animations.size(); ++i) {
        if (matchesName(name, scene.animations[i].name)) found.push_back(i);
        names.push_back(scene.animations[i].name);
    }
    if (!found.empty()) return found;
    if (const auto index = indexIn(name, scene.animations.size())) return {*index};
    throw Error(Fault::Usage,
                fmt::format("--animation: no animation \"{}\" in {}{}", name, scene.path,
                            names.empty() ? ", which has none; leave --animation out"
                                          : nearestNames(name, names)));
}

std::string namesOf(const Scene& scene, const std::vector<std::size_t>& animations) {
    std::vector<std::string> names;
    for (const std::size_t i : animations) {
        const std::string& name = scene.animations[i].name;
        names.push_back(name.empty() ? std::to_string(i) : shortened(name));
    }
    return someOf(names);
}

}  // namespace

FilmScene::FilmScene(const std::filesystem::path& file, const ReadOptions& options)
    : file_(file, options) {}

std::vector<std::size_t> FilmScene::play(const std::vector<std::string>& names, Report& report) {
    std::set<std::size_t> chosen;
    for (const std::string& name : names) {
        for (const std::size_t i : matchingAnimations(scene(), name))
            chosen.insert(i);
    }
    std::vector<std::size_t> animations(chosen.begin(), chosen.end());
    if (names.empty()) animations = file_.compatibleAnimations();
    play(animations);
    if (animations.empty()) return animations;
    const bool leavesOut = names.empty() && animations.size() < scene().animations.size();
    report.note(1, fmt::format("plays {}{}", namesOf(scene(), animations),
                               leavesOut ? "; --animation plays others" : ""));
    return animations;
}

void FilmScene::play(const std::vector<std::size_t>& animations) {
    file_.play(animations);
    range_ = {};
    if (!plays()) file_.pose(0);
    if (animations.empty()) return;
    range_ = {scene().animations[animations[0]].start, scene().animations[animations[0]].end};
    for (const std::size_t i : animations) {
        range_.start = std::min(range_.start, scene().animations[i].start);
        range_.end = std::max(range_.end, scene().animations[i].end);
    }
}

void FilmScene::prepare(const std::string& camera, double aspect) {
    cameraChoice_ = camera;
    aspect_ = aspect;
    meter_ = {};
    geometries_.clear();
    framing_.reset();
    const bool needsFraming = camera.empty() && scene().cameras.empty();
    const int measurements = plays() && range_.end > range_.start ? kMeasurements : 1;
    for (int i = measurements - 1; i >= 0; --i) {
        if (plays()) pose(range_.start + (range_.end - range_.start) * i / (kMeasurements - 1));
        meter_.measure(scene());
        if (needsFraming && measurements > 1) geometries_.push_back(geometryOf(scene()));
    }
    if (needsFraming) framing_ = framingCameraFor(aspect);
    keyView_ = this->camera();
}

void FilmScene::setAspect(double aspect) {
    aspect_ = aspect;
    if (framing_) keyView_ = *(framing_ = framingCameraFor(aspect));
}

Camera FilmScene::framingCameraFor(double aspect) const {
    if (geometries_.empty()) return framingCamera(scene(), aspect);
    std::vector<const Scene*> all;
    for (const Scene& geometry : geometries_)
        all.push_back(&geometry);
    return framingCameraOfFilm(all, aspect);
}

void FilmScene::pose(double seconds) {
    file_.pose(std::clamp(seconds, range_.start, range_.end));
}

Camera FilmScene::camera() const {
    return framing_ ? *framing_ : chooseCamera(scene(), cameraChoice_, aspect_);
}

LightSet FilmScene::lights(const LightingOptions& options) const {
    return lightsFor(scene(), keyView_, options, meter_);
}

}  // namespace tavora::studio
