#include "studio/window/session.h"

#include "studio/app/scene_view.h"

namespace tavora::studio {
namespace {

// The window's shape is not known yet; a camera that frames the scene wants one.
constexpr double kUsualAspect = 16.0 / 9;

}  // namespace

Session::Session(const EditRequest& request, Report& report)
    : document_(std::make_unique<Document>(request.scene, request.shading, report)) {
    const Scene& scene = document_->scene();
    const Camera camera = chooseCamera(scene, {}, kUsualAspect);
    lights_ = std::make_shared<const LightRig>(settleLights(scene, camera, request.lighting));
    binding_ = std::make_unique<PanelBinding>(*lights_);
    orbit_ = std::make_unique<Orbit>(camera, scene.bounds);
    startPicture(request.threads);

    document_->settingsChanged = [this](std::size_t surface) {
        if (!comparing_) picture_->setSurface(surface, shadingOf(surface));
        emit settingsChanged(surface);
    };
    document_->stateChanged = [this] { emit stateChanged(); };
}

Session::~Session() {
    picture_.reset();  // its threads call back
}

void Session::startPicture(int threads) {
    LiveOptions options;
    options.threads = threads;
    picture_ =
        std::make_unique<LivePicture>(document_->scene(), document_->module(), options, [this] {
            QMetaObject::invokeMethod(this, &Session::pictureChanged, Qt::QueuedConnection);
        });
    picture_->setLights(lights_);
    showSettings();
}

void Session::setSize(int width, int height) {
    if (width < 1 || height < 1 || (width == width_ && height == height_)) return;
    width_ = width;
    height_ = height;
    showView();
}

void Session::setInterest(int x, int y) {
    if (const auto picked = picture_->pickAt(x, y)) orbit_->setInterest(picked->position);
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
    orbit_->frame(document_->scene().bounds);
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
    if (width_ > 0) picture_->setView(orbit_->camera(), width_, height_);
    emit viewChanged();
}

void Session::showSettings() {
    std::vector<SurfaceShading> shading;
    for (std::size_t surface = 0; surface < document_->scene().surfaces.size(); ++surface) {
        shading.push_back(shadingOf(surface));
    }
    picture_->setShading(std::move(shading));
}

SurfaceShading Session::shadingOf(std::size_t surface) const {
    const SurfaceSettings& settings =
        comparing_ ? document_->savedSettings(surface) : document_->settings(surface);
    return {settings.enabled ? settings.block : std::nullopt};
}

}  // namespace tavora::studio
