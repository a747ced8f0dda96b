#include "studio/window/session.h"

#include <algorithm>

#include "studio/setup/scene_view.h"

namespace tavora::studio {
namespace {

// The window's shape is not known yet; a camera that frames the scene wants one.
constexpr double kUsualAspect = 16.0 / 9;

/// What is so many times as deep as the foreground is a backdrop: a hand that
/// grabs the sky means to turn what stands before it.
constexpr double kBackdrop = 3;
constexpr int kProbes = 5;  // rows and columns of places to look at

}  // namespace

Session::Session(const EditRequest& request, Report& report)
    : lighting_(request.lighting),
      background_(request.background),
      document_(request.scene, request.shading, report, request.reading) {
    startAt(chooseCamera(scene(), {}, kUsualAspect));
    startPicture(request);

    document_.settings.surfaceChanged = [this](std::size_t surface) {
        if (!comparing_) revision_ = picture_->setSurface(surface, shaderOf(surface));
        emit settingsChanged(surface);
    };
    document_.settings.stateChanged = [this] { emit stateChanged(); };
}

Session::~Session() {
    picture_.reset();  // its threads call back
}

/// The view begins, or where it is at its start begins again, as this camera.
void Session::startAt(const Camera& camera) {
    if (orbit_ == nullptr) {
        orbit_ = std::make_unique<Orbit>(camera, scene().bounds);
    } else {
        orbit_->setStart(camera);
    }
    // Only a scene without lights of its own is lit from where the camera stands.
    if (lights_ != nullptr && !scene().lights.empty()) return;
    LightMeter meter;
    meter.measure(scene());
    lights_ = std::make_shared<const LightRig>(lightsFor(scene(), camera, lighting_, meter));
    if (picture_ != nullptr) revision_ = picture_->setLights(lights_);
}

void Session::startPicture(const EditRequest& request) {
    LiveOptions options;
    options.threads = request.threads;
    options.background = background_;
    picture_ =
        std::make_unique<LivePicture>(scene(), document_.settings.module().file(), options, [this] {
            QMetaObject::invokeMethod(this, &Session::pictureChanged, Qt::QueuedConnection);
        });
    revision_ = picture_->setLights(lights_);
    showSettings();
}

double Session::refined() const {
    const auto frame = picture_->latest();
    return frame != nullptr && frame->revision == revision_ ? frame->refined : 0;
}

void Session::setSize(int width, int height) {
    if (width < 1 || height < 1 || (width == width_ && height == height_)) return;
    width_ = width;
    height_ = height;
    if (scene().cameras.empty()) startAt(chooseCamera(scene(), {}, aspect()));
    showView();
}

double Session::aspect() const {
    return static_cast<double>(width_) / height_;
}

void Session::setInterest(int x, int y) {
    const std::vector<Imath::V3d> shown = placesShown();
    if (shown.empty()) return;
    const Imath::V3d& foreground = shown[shown.size() / 4];
    const auto picked = picture_->pickAt(x, y);
    const bool near = picked && depthOf(picked->position) <= kBackdrop * depthOf(foreground);
    orbit_->setInterest(near ? picked->position : foreground);
}

/// Some of the places in the picture, the nearest first.
std::vector<Imath::V3d> Session::placesShown() const {
    std::vector<Imath::V3d> places;
    for (int row = 0; row < kProbes; ++row) {
        for (int column = 0; column < kProbes; ++column) {
            const auto picked = picture_->pickAt((2 * column + 1) * width_ / (2 * kProbes),
                                                 (2 * row + 1) * height_ / (2 * kProbes));
            if (picked) places.push_back(picked->position);
        }
    }
    std::sort(places.begin(), places.end(),
              [this](const Imath::V3d& a, const Imath::V3d& b) { return depthOf(a) < depthOf(b); });
    return places;
}

double Session::depthOf(const Imath::V3d& place) const {
    const Imath::M44d& frame = orbit_->camera().cameraToWorld;
    const Imath::V3d back(frame[2][0], frame[2][1], frame[2][2]);
    return (frame.translation() - place).dot(back);
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
