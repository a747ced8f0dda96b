#pragma once

#include <QObject>
#include <memory>

#include "studio/app/requests.h"
#include "studio/edit/document.h"
#include "studio/edit/orbit.h"
#include "studio/render/live/live_picture.h"
#include "studio/scene/lighting/light_set.h"

namespace tavora::studio {

/// An open scene: the document, the view, and the live picture of both. GUI thread.
class Session : public QObject {
    Q_OBJECT
  public:
    /// Throws what Document throws, and Error, Fault::Usage. `report` must outlive it.
    Session(const EditRequest& request, Report& report);
    ~Session() override;

    Document& document() { return document_; }
    const Document& document() const { return document_; }
    const Scene& scene() const { return document_.settings.scene(); }
    /// The picture's lights. Another set after the picture's aspect or time has changed.
    const std::shared_ptr<const LightSet>& lights() const { return lights_; }
    const LivePicture& picture() const { return *picture_; }
    const Camera& camera() const { return orbit_->camera(); }
    /// The shaders that the picture shows, one entry for each surface of the scene.
    SurfaceShaders shading() const;
    const std::optional<Imath::V3d>& background() const { return background_; }
    /// Grows with every change of what the picture should show.
    std::uint64_t revision() const { return revision_; }
    /// The fraction of samples that the picture has of the current revision; 1: it is finished.
    double refined() const;
    /// A line that says why the picture is no longer updated; else empty.
    std::string failure() const;

    /// The animations that play, as indices; when empty, the scene is in its rest pose. This is not
    /// part of the document.
    const std::vector<std::size_t>& playing() const { return playing_; }
    void play(const std::vector<std::size_t>& animations);
    /// The range of time of the animations that play.
    const TimeRange& range() const { return document_.film.range(); }
    /// The time in seconds, within the range. A time that is set before the first picture of the
    /// previous time is ready is shown after that picture, so that fast changes still show
    /// pictures.
    double time() const { return nextTime_.value_or(time_); }
    void setTime(double seconds);
    /// Whether no picture of the scene at time() is ready yet.
    bool isTimePending() const;

    /// The size of the picture, in device pixels.
    void setSize(int width, int height);
    int width() const { return width_; }
    int height() const { return height_; }
    /// Width / height of the picture; only once it has a size.
    double aspect() const;

    /// Sets the point around which the view turns: the one that a pixel shows, or a point in the
    /// foreground when the pixel shows a backdrop or nothing.
    void setInterest(int x, int y);
    /// Changes the view, see Orbit, and the picture.
    void turn(double x, double y);
    void pan(double x, double y);
    void zoom(double factor);
    void frameAll();
    void resetView();
    bool isViewAtStart() const { return orbit_->isAtStart(); }

    /// Shows the saved settings in place of the current ones.
    void compareWithSaved(bool compare);
    bool isComparing() const { return comparing_; }

  signals:
    /// picture() has a newer frame.
    void pictureChanged();
    void viewChanged();
    void timeChanged();
    void lightsChanged();
    /// The scene is about to be posed: slots must stop reading it before they return.
    void aboutToPose();
    void settingsChanged(std::size_t surface);
    /// The undo stack, or whether the document is saved, may have changed.
    void stateChanged();

  private:
    void startAt(const Camera& camera);
    std::vector<Imath::V3d> visiblePoints() const;
    double depthOf(const Imath::V3d& point) const;
    void showView();
    void showSettings();
    void startPlaying(const AnimationRequest& request);
    void lightScene();
    void poseNext();
    void pose(const std::function<void()>& change);
    void warnFrom(std::size_t first);
    const std::optional<SurfaceShader>& shaderOf(std::size_t surface) const;
    void startPicture(const EditRequest& request);

    Report& report_;
    LightingOptions lighting_;
    std::optional<Imath::V3d> background_;
    Document document_;
    std::shared_ptr<const LightSet> lights_;
    std::unique_ptr<Orbit> orbit_;
    std::unique_ptr<LivePicture> picture_;
    std::uint64_t revision_ = 0;       ///< of the last request to the picture
    std::uint64_t posedRevision_ = 0;  ///< of the last pose
    std::vector<std::size_t> playing_;
    double time_ = 0;  ///< for which the scene is posed
    std::optional<double> nextTime_;
    std::string poseFailure_;
    int width_ = 0;
    int height_ = 0;
    bool comparing_ = false;
};

}  // namespace tavora::studio
