#include "studio/window/session.h"

#include <algorithm>

namespace tavora::studio {
namespace {

// The picture's width / height for a camera that frames the scene, until the window has a size.
constexpr double kInitialAspect = 16.0 / 9;

/// What is this many times as far away as the foreground counts as backdrop: a user who drags the
/// sky wants to turn the objects in front of it.
constexpr double kBackdrop = 3;
constexpr int kProbes = 5;  // rows and columns of pixels that are probed

/// Whether a table of the lights would show the same for both.
bool showTheSame(const LightSet& a, const LightSet& b) {
    return a.ambient == b.ambient &&
           std::equal(a.lights.begin(), a.lights.end(), b.lights.begin(), b.lights.end(),
                      [](const ResolvedLight& one, const ResolvedLight& other) {
                          return one.color == other.color && one.light->name == other.light->name;
                      });
}

}  // namespace

Session::Session(const EditRequest& request, Report& report)
    : report_(report),
      lighting_(request.lighting),
      background_(request.background),
      document_(request.scene, request.shading, report, request.reading) {
    startPlaying(request.animation);
    startAt(document_.film.camera());
    lightScene();
    startPicture(request);
    // Queued, so that the views show the picture before the scene is posed again.
    connect(this, &Session::pictureChanged, this, &Session::poseNext, Qt::QueuedConnection);

    document_.settings.surfaceChanged = [this](std::size_t surface) {
        if (!comparing_) revision_ = picture_->setSurface(surface, shaderOf(surface));
        emit settingsChanged(surface);
    };
    document_.settings.stateChanged = [this] { emit stateChanged(); };
}

Session::~Session() {
    picture_.reset();  // first, since its threads call this object
}

/// Sets the camera at the start; a view that is still at the start changes to it.
void Session::startAt(const Camera& camera) {
    if (orbit_ == nullptr) {
        orbit_ = std::make_unique<Orbit>(camera, scene().bounds);
    } else {
        orbit_->setStart(camera);
    }
}

void Session::lightScene() {
    const auto before =
        std::exchange(lights_, std::make_shared<const LightSet>(document_.film.lights(lighting_)));
    if (picture_ != nullptr) revision_ = picture_->setLights(lights_);
    if (before != nullptr && !showTheSame(*before, *lights_)) emit lightsChanged();
}

void Session::startPlaying(const AnimationRequest& request) {
    FilmScene& film = document_.film;
    if (request.isGiven()) {
        const std::size_t warningCount = scene().warnings.size();
        playing_ = film.play(request.names, report_);
        warnFrom(warningCount);
    }
    film.prepare({}, kInitialAspect);
    if (scene().animations.empty()) film.closeFile();
    if (!film.plays()) return;
    time_ = std::clamp(request.seconds.value_or(0), range().start, range().end);
    film.pose(time_);
}

void Session::warnFrom(std::size_t first) {
    for (std::size_t i = first; i < scene().warnings.size(); ++i)
        report_.warning(scene().warnings[i]);
}

void Session::play(const std::vector<std::size_t>& animations) {
    playing_ = animations;
    nextTime_.reset();
    pose([this] {
        FilmScene& film = document_.film;
        const std::size_t warningCount = scene().warnings.size();
        film.play(playing_);
        warnFrom(warningCount);
        film.prepare({}, width_ > 0 ? aspect() : kInitialAspect);
        time_ = range().start;
        if (film.plays()) film.pose(time_);
    });
    emit timeChanged();
}

void Session::setTime(double seconds) {
    nextTime_ = std::clamp(seconds, range().start, range().end);
    poseNext();
    emit timeChanged();
}

bool Session::isTimePending() const {
    if (nextTime_) return true;
    const auto frame = picture_->latest();
    return width_ > 0 && failure().empty() &&
           (frame == nullptr || frame->revision < posedRevision_);
}

/// Poses the scene for the time that was requested last, if the picture of the time before is
/// shown.
void Session::poseNext() {
    if (!nextTime_) return;
    const double next = *std::exchange(nextTime_, std::nullopt);
    if (isTimePending()) {
        nextTime_ = next;
        return;
    }
    time_ = next;
    pose([this] { document_.film.pose(time_); });
}

void Session::pose(const std::function<void()>& change) {
    emit aboutToPose();
    try {
        posedRevision_ = picture_->pose([&] {
            change();
            startAt(document_.film.camera());
            lightScene();
            showView();
            return FrameTime{0, time_};
        });
        revision_ = posedRevision_;
        poseFailure_.clear();
    } catch (const std::exception& error) {
        poseFailure_ = error.what();
        emit pictureChanged();
    }
}

void Session::startPicture(const EditRequest& request) {
    LiveOptions options;
    options.threads = request.threads;
    options.background = background_;
    picture_ =
        std::make_unique<LivePicture>(scene(), document_.settings.module().file(), options, [this] {
            QMetaObject::invokeMethod(this, &Session::pictureChanged, Qt::QueuedConnection);
        });
    posedRevision_ = picture_->pose([this] {
        picture_->setLights(lights_);
        return FrameTime{0, time_};
    });
    showSettings();
}

double Session::refined() const {
    const auto frame = picture_->latest();
    const bool isNewest = frame != nullptr && frame->revision == revision_ && !nextTime_;
    return isNewest ? frame->refined : 0;
}

std::string Session::failure() const {
    return poseFailure_.empty() ? picture_->failure() : poseFailure_;
}

void Session::setSize(int width, int height) {
    if (width < 1 || height < 1 || (width == width_ && height == height_)) return;
    width_ = width;
    height_ = height;
    FilmScene& film = document_.film;
    film.setAspect(aspect());
    if (film.isFramed()) startAt(film.camera());
    // The key light of a scene without lights depends on the camera.
    if (film.isFramed() && scene().lights.empty()) lightScene();
    showView();
}

double Session::aspect() const {
    return static_cast<double>(width_) / height_;
}

void Session::setInterest(int x, int y) {
    const std::vector<Imath::V3d> points = visiblePoints();
    if (points.empty()) return;
    const Imath::V3d& foreground = points[points.size() / 4];
    const auto picked = picture_->pickAt(x, y);
    const bool near = picked && depthOf(picked->position) <= kBackdrop * depthOf(foreground);
    orbit_->setInterest(near ? picked->position : foreground);
}

/// World positions that some pixels of the picture show, the nearest first.
std::vector<Imath::V3d> Session::visiblePoints() const {
    std::vector<Imath::V3d> points;
    for (int row = 0; row < kProbes; ++row) {
        for (int column = 0; column < kProbes; ++column) {
            const auto picked = picture_->pickAt((2 * column + 1) * width_ / (2 * kProbes),
                                                 (2 * row + 1) * height_ / (2 * kProbes));
            if (picked) points.push_back(picked->position);
        }
    }
    std::sort(points.begin(), points.end(),
              [this](const Imath::V3d& a, const Imath::V3d& b) { return depthOf(a) < depthOf(b); });
    return points;
}

double Session::depthOf(const Imath::V3d& point) const {
    const Imath::M44d& frame = orbit_->camera().cameraToWorld;
    const Imath::V3d back(frame[2][0], frame[2][1], frame[2][2]);
    return (frame.translation() - point).dot(back);
}

void Session::turn(double x, double y) {
    orbit_->turn(x, y);
    showView();
}

void Session::pan(double x, double y) {
    orbit_->pan(x, y);
    showView();
}

void Session::zoom(double factor) {
    orbit_->zoom(factor);
    showView();
}

void Session::frameAll() {
    orbit_->frame(scene().bounds, aspect());
    showView();
}

void Session::resetView() {
    orbit_->reset();
    showView();
}

void Session::compareWithSaved(bool compare) {
    if (compare == comparing_) return;
    comparing_ = compare;
    showSettings();
    emit stateChanged();
}

void Session::showView() {
    if (width_ > 0) revision_ = picture_->setView(orbit_->camera(), width_, height_);
    emit viewChanged();
}

SurfaceShaders Session::shading() const {
    SurfaceShaders all;
    for (std::size_t surface = 0; surface < scene().surfaces.size(); ++surface)
        all.push_back(shaderOf(surface));
    return all;
}

void Session::showSettings() {
    revision_ = picture_->setShading(shading());
}

const std::optional<SurfaceShader>& Session::shaderOf(std::size_t surface) const {
    const SceneSettings& settings = document_.settings;
    return comparing_ ? settings.clean(surface) : settings.at(surface);
}

}  // namespace tavora::studio
